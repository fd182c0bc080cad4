import shapes.Shape;
class shapes.Square extends shapes.Shape {
  static var unit = "px";
  function Square(side) { super(side, side); }
  function toString() { return "square of " + w + unit; }
}
