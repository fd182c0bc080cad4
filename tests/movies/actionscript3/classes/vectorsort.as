// movie: version="15" width="100" height="100" rate="10" document="Main"
// A vector has no list of places to answer with, and does not sort what is not unique: it is given back as it stands.
package {
    import flash.display.Sprite;
    public class Main extends Sprite
    {
        public function Main()
        {
            var v:Vector.<int> = new <int>[5, 16, 8, 24, 8];
            trace(v.sort(Array.NUMERIC | Array.RETURNINDEXEDARRAY) === v, v);
            trace(v.sort(Array.NUMERIC | Array.UNIQUESORT) === v, v);
            trace(v.sort(Array.NUMERIC | Array.DESCENDING)); trace(v.sort(0));
            trace([5, 16, 8, 24, 8].sort(Array.NUMERIC | Array.RETURNINDEXEDARRAY), [1, 1].sort(Array.UNIQUESORT));
        }
    }
}
