// movie: version="10" width="200" height="100" rate="10" document="Main"
// A menu with a link opens it when the user says so, and no other way; what it says of the clipboard does not count.
package {
    import flash.display.*; import flash.events.*; import flash.net.*; import flash.text.*; import flash.ui.*;
    public class Main extends Sprite
    {
        public function Main()
        {
            var request:URLRequest = new URLRequest("http://example.com/a");
            request.data = new URLVariables("b=c");
            var linked:Sprite = new Sprite(), aimless:Sprite = new Sprite();
            for each (var box:Sprite in [linked, aimless]) {
                box.graphics.beginFill(0x336699);
                box.graphics.drawRect(0, 0, 40, 40);
                box.contextMenu = new ContextMenu();
                box.contextMenu.clipboardMenu = true;
                box.contextMenu.customItems.push(new ContextMenuItem("Open link"));
                box.addEventListener(Event.COPY, function(e:Event):void { trace(e.type, e.target == aimless); });
                addChild(box);
            }
            aimless.x = 60;
            aimless.contextMenu.link = new URLRequest();
            linked.contextMenu.link = request;
            var field:TextField = new TextField();
            field.type = TextFieldType.INPUT;
            field.y = 50;
            field.addEventListener(Event.CHANGE, function(e:Event):void { trace(field.text); });
            addChild(field);
        }
    }
}
