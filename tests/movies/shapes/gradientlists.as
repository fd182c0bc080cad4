// Lists of a gradient that lack elements, are too short or out of range; a fill without a colour.
function square(n) {
    var x = 10 + (n % 4) * 45;
    var y = 10 + int(n / 4) * 45;
    moveTo(x, y);
    lineTo(x + 40, y);
    lineTo(x + 40, y + 40);
    lineTo(x, y + 40);
    lineTo(x, y);
    endFill();
}
function gradient(n, colors, alphas, ratios) {
    var x = 10 + (n % 4) * 45;
    var y = 10 + int(n / 4) * 45;
    beginGradientFill("linear", colors, alphas, ratios, {matrixType: "box", x: x, y: y, w: 40, h: 40, r: 0});
    square(n);
}
var three = {length: 3};
// An alpha that is missing is that of the colour before it, a ratio that of the alpha.
gradient(0, [64, 0xFF0000, 0xFF00], three, [0, 127, 255]);
gradient(1, [255, 0xFF0000, 0xFF00], [100, 100, 100], three);
// Undefined is nothing; a colour that is undefined is black.
gradient(2, [255, 0xFF00], [undefined, 100], [0, 255]);
gradient(3, [undefined, 0xFF00], [100, 100], [0, 255]);
// Without stops black, with a ratio out of range nothing.
gradient(4, [], [], []);
gradient(5, [255], [100], [-1]);
gradient(6, [255], [100], [256]);
gradient(7, [0xFF8000], [100], [255.8]);
// An unknown kind changes nothing, none at all ends the fill.
beginFill(0x4974BA);
beginGradientFill("other", [255], [100], [0], {});
square(8);
beginFill(0x4974BA);
beginGradientFill(undefined, [255], [100], [0], {});
square(9);
beginFill();
square(10);
beginFill(255, undefined);
square(11);
trace(_width + " " + _height);
stop();
