// movie: version="10" width="200" height="100" rate="10" document="Main"
// Enter and the space bar click what has the focus, if it is a button.
package {
    import flash.display.*; import flash.events.*;
    public class Main extends Sprite
    {
        public function Main()
        {
            var button:Sprite = new Sprite(), plain:Sprite = new Sprite(), real:SimpleButton = new SimpleButton();
            button.name = "button"; plain.name = "plain"; real.name = "real";
            button.buttonMode = true; plain.tabEnabled = true;
            var order:Array = [button, plain, real];
            for (var i:int = 0; i < 3; i++) { addChild(order[i]); order[i].tabIndex = i; }
            stage.addEventListener("click", function(e:MouseEvent):void { trace("click", e.target.name); });
            stage.addEventListener("keyDown", function(e:KeyboardEvent):void {
                trace("down", e.keyCode, stage.focus.name);
                // The click goes to what has the focus by then.
                if (e.keyCode == 32 && stage.focus == real) stage.focus = plain;
            });
            stage.focus = button;
        }
    }
}
