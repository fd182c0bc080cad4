// movie: version="10" width="200" height="200" rate="10" document="Main"
// Whose menu opens, what of it is shown, and who hears of it.
package {
    import flash.display.*; import flash.events.*; import flash.text.*; import flash.ui.*;
    public class Main extends Sprite
    {
        private function box(name:String, x:Number, parent:Sprite):Sprite {
            var s:Sprite = new Sprite();
            s.name = name; s.x = x;
            s.graphics.beginFill(0x336699); s.graphics.drawRect(0, 0, 40, 40); s.graphics.endFill();
            parent.addChild(s);
            return s;
        }
        private function hear(menu:ContextMenu, ...captions):ContextMenu {
            menu.addEventListener(ContextMenuEvent.MENU_SELECT, function(e:ContextMenuEvent):void {
                trace(e.type, e.target == menu, e.contextMenuOwner.name, e.mouseTarget);
            });
            for each (var caption:String in captions) {
                var item:ContextMenuItem = new ContextMenuItem(caption);
                item.addEventListener(ContextMenuEvent.MENU_ITEM_SELECT, function(e:ContextMenuEvent):void {
                    trace(e.type, e.target.caption, e.contextMenuOwner.name, e.mouseTarget.name);
                });
                menu.customItems.push(item);
            }
            return menu;
        }
        public function Main()
        {
            name = "main";
            contextMenu = hear(new ContextMenu(), "Начать заново", "Звук & музыка");
            var outer:Sprite = box("outer", 60, this), inner:Sprite = box("inner", 20, outer);
            inner.y = 20;
            var own:ContextMenu = hear(new ContextMenu(), "One", "Hidden", "Line\nfeed\t", "Grey", "Cut", "  one!", "-", "my settings", "Paste tastes great", "   ");
            outer.contextMenu = own;
            own.hideBuiltInItems();
            own.customItems[1].visible = false;
            own.customItems[3].enabled = false;
            own.customItems[3].separatorBefore = true;

            // One that is made as it opens, with more than is shown, and takes itself away.
            var made:Sprite = box("made", 120, this);
            made.contextMenu = new ContextMenu();
            made.contextMenu.addEventListener("menuSelect", function(e:ContextMenuEvent):void {
                var list:Array = [null, 5, new ContextMenuItem("")];
                for (var i:int = 1; i <= 20; i++) list.push(new ContextMenuItem("number " + i));
                ContextMenu(e.target).customItems = list;
                list[3].addEventListener("menuItemSelect", function(e:ContextMenuEvent):void {
                    trace("chosen of", e.contextMenuOwner, e.contextMenuOwner.parent);
                    throw new Error("in a listener");
                });
                made.contextMenu = null;
                made.parent.removeChild(made);
            });
            var copy:Sprite = box("copy", 160, this);
            copy.contextMenu = new ContextMenu();
            copy.contextMenu.clipboardMenu = true;
            copy.contextMenu.clipboardItems.copy = true;
            copy.addEventListener(Event.COPY, function(e:Event):void { trace(e.type, e.target.name, e.bubbles); });

            var field:TextField = new TextField();
            field.name = "field"; field.type = "input"; field.y = 100; field.width = 100; field.height = 20; field.text = "text";
            addChild(field);
            field.addEventListener("change", function(e:Event):void { trace("changed to", field.text); });
            field.addEventListener("focusIn", function(e:Event):void { trace("focus"); });
            var label:TextField = new TextField();
            label.selectable = false; label.text = "label"; label.y = 150;
            addChild(label);
        }
    }
}
