// How far names and values go in a style sheet.
function show(css) {
    var sheet = new TextField.StyleSheet(), done = sheet.parseCSS(css), line = css + " : " + done;
    var names = sheet.getStyleNames();
    for (var i = 0; i < names.length; i++) {
        line += " " + names[i] + " {";
        var style = sheet.getStyle(names[i]), parts = [];
        for (var p in style) parts.push("[" + p + "]=[" + style[p] + "]");
        parts.sort();
        line += parts.join(" ") + "}";
    }
    trace(line);
}
show("a{key:value}");
show("a{name}b{:value}");
show("a{;;key:value;other:value}");
show("a{  key  :  x y ; }");
show("a{two words:x}");
show("a{:}");
show("a{:;");
show("a{:");
show("a{key:x;;}");
show("a{b-c:x;d--e:y}");
