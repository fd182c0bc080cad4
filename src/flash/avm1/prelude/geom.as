// Point, Rectangle and Matrix of the package flash.geom. Written in script, as the genuine player has them: movies
// see ordinary script functions with prototypes, members that are enumerated, and values that are kept unconverted
// until a calculation needs them.

flash.geom.Point = function (x, y) {
    if (arguments.length == 0) {
        this.x = 0;
        this.y = 0;
    } else {
        this.x = x;
        this.y = y;
    }
};
flash.geom.Point.prototype.clone = function () {
    return new flash.geom.Point(this.x, this.y);
};
flash.geom.Point.prototype.offset = function (dx, dy) {
    this.x += Number(dx);
    this.y += Number(dy);
};
flash.geom.Point.prototype.equals = function (toCompare) {
    return toCompare instanceof flash.geom.Point && toCompare.x == this.x && toCompare.y == this.y;
};
flash.geom.Point.prototype.subtract = function (v) {
    return new flash.geom.Point(this.x - v.x, this.y - v.y);
};
flash.geom.Point.prototype.add = function (v) {
    return new flash.geom.Point(this.x + v.x, this.y + v.y);
};
flash.geom.Point.prototype.normalize = function (thickness) {
    var length = this.length;
    if (length > 0) {
        var factor = thickness / length;
        this.x *= factor;
        this.y *= factor;
    }
};
flash.geom.Point.prototype.toString = function () {
    return "(x=" + this.x + ", y=" + this.y + ")";
};
flash.geom.Point.prototype.addProperty("length", function () {
    return Math.sqrt(this.x * this.x + this.y * this.y);
}, null);
flash.geom.Point.distance = function (pt1, pt2) {
    return pt1.subtract(pt2).length;
};
flash.geom.Point.polar = function (len, angle) {
    return new flash.geom.Point(len * Math.cos(angle), len * Math.sin(angle));
};
flash.geom.Point.interpolate = function (pt1, pt2, f) {
    return new flash.geom.Point(pt2.x + f * (pt1.x - pt2.x), pt2.y + f * (pt1.y - pt2.y));
};

flash.geom.Rectangle = function (x, y, width, height) {
    if (arguments.length == 0) {
        this.setEmpty();
    } else {
        this.x = x;
        this.y = y;
        this.width = width;
        this.height = height;
    }
};
flash.geom.Rectangle.prototype.clone = function () {
    return new flash.geom.Rectangle(this.x, this.y, this.width, this.height);
};
flash.geom.Rectangle.prototype.setEmpty = function () {
    this.x = 0;
    this.y = 0;
    this.width = 0;
    this.height = 0;
};
// "<=" is "not greater": a rectangle whose size is no number is empty, too.
flash.geom.Rectangle.prototype.isEmpty = function () {
    return this.width <= 0 || this.height <= 0;
};
flash.geom.Rectangle.prototype.inflate = function (dx, dy) {
    this.x -= dx;
    this.width += 2 * dx;
    this.y -= dy;
    this.height += 2 * dy;
};
flash.geom.Rectangle.prototype.inflatePoint = function (pt) {
    this.inflate(pt.x, pt.y);
};
flash.geom.Rectangle.prototype.offset = function (dx, dy) {
    this.x += Number(dx);
    this.y += Number(dy);
};
flash.geom.Rectangle.prototype.offsetPoint = function (pt) {
    this.offset(pt.x, pt.y);
};
flash.geom.Rectangle.prototype.contains = function (x, y) {
    return x >= this.x && x < this.x + this.width && y >= this.y && y < this.y + this.height;
};
flash.geom.Rectangle.prototype.containsPoint = function (pt) {
    return pt.x >= this.x && pt.x < this.x + this.width && pt.y >= this.y && pt.y < this.y + this.height;
};
flash.geom.Rectangle.prototype.containsRectangle = function (rect) {
    var right = rect.x + rect.width;
    var bottom = rect.y + rect.height;
    var ownRight = this.x + this.width;
    var ownBottom = this.y + this.height;
    return rect.x >= this.x && rect.x < ownRight && rect.y >= this.y && rect.y < ownBottom &&
        right > this.x && right <= ownRight && bottom > this.y && bottom <= ownBottom;
};
flash.geom.Rectangle.prototype.intersection = function (toIntersect) {
    var result = new flash.geom.Rectangle();
    if (this.isEmpty() || toIntersect.isEmpty()) return result;
    var x = Math.max(this.x, toIntersect.x);
    var y = Math.max(this.y, toIntersect.y);
    var width = Math.min(this.x + this.width, toIntersect.x + toIntersect.width) - x;
    var height = Math.min(this.y + this.height, toIntersect.y + toIntersect.height) - y;
    if (width <= 0 || height <= 0) return result;
    result.x = x;
    result.y = y;
    result.width = width;
    result.height = height;
    return result;
};
flash.geom.Rectangle.prototype.intersects = function (toIntersect) {
    return !this.intersection(toIntersect).isEmpty();
};
flash.geom.Rectangle.prototype.union = function (toUnion) {
    if (this.isEmpty()) return toUnion.clone();
    if (toUnion.isEmpty()) return this.clone();
    var x = Math.min(this.x, toUnion.x);
    var y = Math.min(this.y, toUnion.y);
    return new flash.geom.Rectangle(x, y,
        Math.max(this.x + this.width, toUnion.x + toUnion.width) - x,
        Math.max(this.y + this.height, toUnion.y + toUnion.height) - y);
};
flash.geom.Rectangle.prototype.equals = function (toCompare) {
    return toCompare instanceof flash.geom.Rectangle && toCompare.x == this.x && toCompare.y == this.y &&
        toCompare.width == this.width && toCompare.height == this.height;
};
flash.geom.Rectangle.prototype.toString = function () {
    return "(x=" + this.x + ", y=" + this.y + ", w=" + this.width + ", h=" + this.height + ")";
};
flash.geom.Rectangle.prototype.addProperty("left", function () {
    return this.x;
}, function (value) {
    this.width += this.x - value;
    this.x = value;
});
flash.geom.Rectangle.prototype.addProperty("right", function () {
    return this.x + this.width;
}, function (value) {
    this.width = value - this.x;
});
flash.geom.Rectangle.prototype.addProperty("top", function () {
    return this.y;
}, function (value) {
    this.height += this.y - value;
    this.y = value;
});
flash.geom.Rectangle.prototype.addProperty("bottom", function () {
    return this.y + this.height;
}, function (value) {
    this.height = value - this.y;
});
flash.geom.Rectangle.prototype.addProperty("topLeft", function () {
    return new flash.geom.Point(this.x, this.y);
}, function (value) {
    this.width += this.x - value.x;
    this.height += this.y - value.y;
    this.x = value.x;
    this.y = value.y;
});
flash.geom.Rectangle.prototype.addProperty("bottomRight", function () {
    return new flash.geom.Point(this.x + this.width, this.y + this.height);
}, function (value) {
    this.width = value.x - this.x;
    this.height = value.y - this.y;
});
flash.geom.Rectangle.prototype.addProperty("size", function () {
    return new flash.geom.Point(this.width, this.height);
}, function (value) {
    this.width = value.x;
    this.height = value.y;
});

flash.geom.Matrix = function (a, b, c, d, tx, ty) {
    if (arguments.length == 0) {
        this.identity();
    } else {
        this.a = a;
        this.b = b;
        this.c = c;
        this.d = d;
        this.tx = tx;
        this.ty = ty;
    }
};
flash.geom.Matrix.prototype.concat = function (m) {
    var a = this.a * m.a + this.b * m.c;
    var b = this.a * m.b + this.b * m.d;
    var c = this.c * m.a + this.d * m.c;
    var d = this.c * m.b + this.d * m.d;
    var tx = this.tx * m.a + this.ty * m.c + m.tx;
    var ty = this.tx * m.b + this.ty * m.d + m.ty;
    this.a = a;
    this.b = b;
    this.c = c;
    this.d = d;
    this.tx = tx;
    this.ty = ty;
};
flash.geom.Matrix.prototype.invert = function () {
    var determinant = this.a * this.d - this.b * this.c;
    if (determinant == 0) {
        this.identity();
        this.a = this.d = 0;
        return;
    }
    var a = this.d / determinant;
    var b = -this.b / determinant;
    var c = -this.c / determinant;
    var d = this.a / determinant;
    var tx = -(a * this.tx + c * this.ty);
    var ty = -(b * this.tx + d * this.ty);
    this.a = a;
    this.b = b;
    this.c = c;
    this.d = d;
    this.tx = tx;
    this.ty = ty;
};
flash.geom.Matrix.prototype.identity = function () {
    this.a = this.d = 1;
    this.b = this.c = 0;
    this.tx = this.ty = 0;
};
flash.geom.Matrix.prototype.createBox = function (scaleX, scaleY, rotation, tx, ty) {
    if (arguments.length < 3) rotation = 0;
    var cos = Math.cos(rotation);
    var sin = Math.sin(rotation);
    this.a = cos * scaleX;
    this.b = sin * scaleY;
    this.c = -sin * scaleX;
    this.d = cos * scaleY;
    this.tx = arguments.length < 4 ? 0 : tx;
    this.ty = arguments.length < 5 ? 0 : ty;
};
// 1638.4 pixels is the side of the square that gradients are defined on.
flash.geom.Matrix.prototype.createGradientBox = function (width, height, rotation, tx, ty) {
    if (arguments.length < 3) rotation = 0;
    if (arguments.length < 4) tx = 0;
    if (arguments.length < 5) ty = 0;
    this.createBox(width / 1638.4, height / 1638.4, rotation, tx + width / 2, ty + height / 2);
};
flash.geom.Matrix.prototype.clone = function () {
    return new flash.geom.Matrix(this.a, this.b, this.c, this.d, this.tx, this.ty);
};
flash.geom.Matrix.prototype.rotate = function (angle) {
    var cos = Math.cos(angle);
    var sin = Math.sin(angle);
    this.concat(new flash.geom.Matrix(cos, sin, -sin, cos, 0, 0));
};
flash.geom.Matrix.prototype.translate = function (dx, dy) {
    this.tx += Number(dx);
    this.ty += Number(dy);
};
flash.geom.Matrix.prototype.scale = function (sx, sy) {
    this.a *= sx;
    this.b *= sy;
    this.c *= sx;
    this.d *= sy;
    this.tx *= sx;
    this.ty *= sy;
};
flash.geom.Matrix.prototype.deltaTransformPoint = function (pt) {
    return new flash.geom.Point(pt.x * this.a + pt.y * this.c, pt.x * this.b + pt.y * this.d);
};
flash.geom.Matrix.prototype.transformPoint = function (pt) {
    return new flash.geom.Point(pt.x * this.a + pt.y * this.c + this.tx, pt.x * this.b + pt.y * this.d + this.ty);
};
flash.geom.Matrix.prototype.toString = function () {
    return "(a=" + this.a + ", b=" + this.b + ", c=" + this.c + ", d=" + this.d + ", tx=" + this.tx + ", ty=" +
        this.ty + ")";
};

// ContextMenu and ContextMenuItem: plain data; the host decides what its menu shows.
ContextMenu = function (callbackFunction) {
    this.onSelect = callbackFunction;
    this.builtInItems = {save: true, zoom: true, quality: true, play: true, loop: true, rewind: true, forward_back: true,
                         print: true};
    this.customItems = new Array();
};
ContextMenu.prototype.copy = function () {
    var made = new ContextMenu(this.onSelect);
    made.builtInItems = this.builtInItems;
    for (var i = 0; i < this.customItems.length; i++) {
        made.customItems.push(this.customItems[i].copy());
    }
    return made;
};
ContextMenu.prototype.hideBuiltInItems = function () {
    this.builtInItems = {save: false, zoom: false, quality: false, play: false, loop: false, rewind: false,
                         forward_back: false, print: false};
};
ContextMenuItem = function (caption, callbackFunction, separatorBefore, enabled, visible) {
    this.caption = caption;
    this.onSelect = callbackFunction;
    this.separatorBefore = separatorBefore == undefined ? false : separatorBefore;
    this.enabled = enabled == undefined ? true : enabled;
    this.visible = visible == undefined ? true : visible;
};
ContextMenuItem.prototype.copy = function () {
    return new ContextMenuItem(this.caption, this.onSelect, this.separatorBefore, this.enabled, this.visible);
};
// Hidden, and from version 7 on.
ASSetPropFlags(ContextMenu.prototype, null, 1027);
ASSetPropFlags(ContextMenuItem.prototype, null, 1027);
ASSetPropFlags(_global, "ContextMenu,ContextMenuItem", 3);

// Makes a class for each name of a comma-separated list, every one an Error of its own name.
AsSetupError = function (names) {
    var list = names.split(",");
    for (var i = 0; i < list.length; i++) {
        var name = list[i];
        this[name] = function (message) {
            this.message = message;
        };
        this[name].prototype = new Error();
        this[name].prototype.name = this[name].prototype.message = name;
    }
};
ASSetPropFlags(_global, "AsSetupError", 1);
