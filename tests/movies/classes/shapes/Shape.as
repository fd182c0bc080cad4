class shapes.Shape {
  var w, h;
  function Shape(w, h) { this.w = w; this.h = h; }
  function area() { return w * h; }
}
