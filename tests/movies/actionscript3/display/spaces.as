// movie: version="10" rate="20" document="spaces"
package {
    import flash.display.Shape;
    import flash.display.Sprite;
    import flash.display.StageQuality;
    import flash.geom.Matrix;
    import flash.geom.Point;

    public class spaces extends Sprite {
        public function spaces() {
            // Off the stage a matrix is told in the parts of a pixel that the quality has.
            var shape:Shape = new Shape();
            shape.scaleX = 2;
            stage.quality = StageQuality.HIGH;
            trace(shape.transform.concatenatedMatrix);
            stage.quality = "8x8";
            trace(shape.transform.concatenatedMatrix, stage.quality);
            addChild(shape);
            trace(shape.transform.concatenatedMatrix);
            stage.quality = StageQuality.HIGH;

            // The way back moves by whole twips.
            shape.transform.matrix = new Matrix(1.3, 0.2, 0.1, 1.2, -31, -32);
            trace(shape.globalToLocal(new Point(10, 20)));
        }
    }
}
