// The rules of «Звездопад». Runs on the main timeline; the frames "title", "play" and "over" show its states.

var kLeft = 48, kRight = 502;       // how far the basket goes
var kCatchTop = 330, kCatchBottom = 362, kReach = 50;
var kGround = 388;
// The first stars fall in these places and slowly, so that everybody learns how the basket moves.
var kFirstPlaces = [275, 160, 390, 80, 480, 275];

var best = 0;
var score, lives, fallen, wait, drops, basketTarget, mouseMoved, depthNext;

function startGame() {
  score = 0;
  lives = 3;
  fallen = 0;
  wait = 15;
  drops = [];
  depthNext = 100;
  basketTarget = 275;
  mouseMoved = false;
  showScore();
  showLives();
  trace("start");
  onMouseMove = function() { mouseMoved = true; };
  onEnterFrame = step;
}

function step() {
  moveBasket();
  if (--wait <= 0) drop();
  for (var i = drops.length - 1; i >= 0; i--) fall(i);
  if (lives <= 0) finish();
}

// Keys move the basket by a step, the mouse draws it near; the last one used counts.
function moveBasket() {
  if (Key.isDown(Key.LEFT)) { basketTarget = basket._x - 24; mouseMoved = false; }
  else if (Key.isDown(Key.RIGHT)) { basketTarget = basket._x + 24; mouseMoved = false; }
  else if (mouseMoved) basketTarget = _xmouse;
  basketTarget = Math.max(kLeft, Math.min(kRight, basketTarget));
  basket._x += (basketTarget - basket._x) * 0.5;
}

function drop() {
  var isFirst = fallen < kFirstPlaces.length;
  var isEmber = !isFirst && Math.random() < Math.min(0.4, 0.15 + fallen * 0.006);
  var clip = attachMovie(isEmber ? "ember" : "star", "drop" + depthNext, depthNext++);
  clip._x = isFirst ? kFirstPlaces[fallen] : kLeft + Math.random() * (kRight - kLeft);
  clip._y = -16;
  clip.isEmber = isEmber;
  clip.speed = Math.min(9, 3 + fallen * 0.08 + (isFirst ? 0 : Math.random()));
  clip.turn = isEmber ? 0 : Math.random() * 6 - 3;
  drops.push(clip);
  fallen++;
  wait = isFirst ? 45 : Math.max(12, 34 - fallen * 0.5);
}

function fall(i) {
  var clip = drops[i];
  clip._y += clip.speed;
  clip._rotation += clip.turn;
  var inReach = Math.abs(clip._x - basket._x) < kReach;
  if (inReach && clip._y > kCatchTop && clip._y < kCatchBottom) {
    caught(clip);
  } else if (clip._y > kGround) {
    if (!clip.isEmber) lose();
  } else {
    return;
  }
  drops.splice(i, 1);
  clip.removeMovieClip();
}

function caught(clip) {
  if (clip.isEmber) {
    lose();
    return;
  }
  score += 10;
  showScore();
  playSound("catch");
  var ring = attachMovie("ring", "ring" + depthNext, depthNext++);
  ring._x = clip._x;
  ring._y = clip._y;
  trace("score " + score);
}

function lose() {
  lives--;
  showLives();
  playSound("miss");
  trace("lives " + lives);
}

function finish() {
  delete onEnterFrame;
  delete onMouseMove;
  for (var i in drops) drops[i].removeMovieClip();
  drops = [];
  best = Math.max(best, score);
  resultText = "Ваш счёт: " + score;
  bestText = "Лучший счёт: " + best;
  playSound("over");
  trace("over " + score);
  gotoAndStop("over");
}

function showScore() { scoreText = "Счёт: " + score; }

function showLives() {
  for (var i = 1; i <= 3; i++) this["heart" + i]._alpha = i <= lives ? 100 : 20;
}

function playSound(name) {
  var sound = new Sound(this);
  sound.attachSound(name);
  sound.start();
}
