// movie: version="10" rate="20"
namespace north = "compass/north";
namespace south;
class Sign {
    north var label:String = "N";
    south var label:String = "S";
    public var label:String = "plain";
    north function turn():String { return "to " + north::label; }
    south function turn():String { return "to " + this.south::label; }
    private function hidden():String { return "hidden"; }
    public function reveal(other:Sign):String { return other.hidden() + private::hidden(); }
}
var sign:Sign = new Sign();
trace(sign.label, sign.north::label, sign.south::label, sign.north::turn(), sign.south::turn());
sign.north::label = "NN";
trace(sign.north::turn(), sign.label);
var which:Namespace = north;
trace(sign.which::label, which.uri);
function inside(s:Sign):String { use namespace north; return s.turn(); }
trace(inside(sign));
trace(sign.reveal(new Sign()));
trace(sign["label"], sign.public::label);
try { trace(sign["hidden"]()); } catch (e:Error) { trace(e.errorID); }
