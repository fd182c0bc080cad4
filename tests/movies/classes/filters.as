// Values are limited as they are set, and a clip answers with copies.
var glow = new flash.filters.GlowFilter(0x1FF0000, 0.5, 300, -1, 2, 99);
trace(glow.color + " " + Math.round(glow.alpha * 255) + " " + glow.blurX + " " + glow.blurY + " " + glow.quality + " " + glow.inner);
var bevel = new flash.filters.BevelFilter();
bevel.type = "outer";
bevel.angle = 366;
trace(bevel.type + " " + Math.round(bevel.angle) + " " + bevel.highlightColor + " " + bevel.shadowColor);
bevel.type = "else";
trace(bevel.type);
var gradient = new flash.filters.GradientGlowFilter(4, 45, [1, 2, 3], [1, 0.5], [0, 128, 400]);
trace(gradient.colors + " | " + gradient.alphas.length + " | " + gradient.ratios);
gradient.ratios = [7];
trace(gradient.colors + " | " + gradient.ratios);
var convolution = new flash.filters.ConvolutionFilter(2, 2, [1, 2, 3]);
trace(convolution.matrix + " " + convolution.clamp + " " + convolution.divisor);
var matrix = new flash.filters.ColorMatrixFilter();
trace(matrix.matrix.length + " " + matrix.matrix[6] + " " + matrix.matrix[7]);
trace((glow instanceof flash.filters.BitmapFilter) + " " + (glow.clone() instanceof flash.filters.GlowFilter) + " " + (glow.clone() == glow));

var clip = _root.createEmptyMovieClip("clip", 1);
clip.filters = [new flash.filters.BlurFilter(5, 6, 2), "no filter", glow];
glow.blurX = 1;
trace(clip.filters.length + " " + clip.filters[0].blurY + " " + clip.filters[1].blurX + " " + (clip.filters[1] instanceof flash.filters.GlowFilter));
clip.filters = null;
trace(clip.filters.length);

// Loops see what made a filter, as in no other class.
var members = "";
for (var member in new flash.filters.BlurFilter(1)) members += " " + member;
trace(members);
