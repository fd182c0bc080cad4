#include "flash/avm2/bindings/Library.h"

namespace flash::avm2
{

namespace
{

// flash.text.engine.
constexpr std::string_view kText = R"(
flash.text.engine::ContentElement
  (ElementFormat=,EventDispatcher=,String=) elementFormat:ElementFormat eventMirror:EventDispatcher textRotation:String userData:*
  groupElement-:GroupElement textBlock-:TextBlock textBlockBeginIndex-:int rawText-:String text-:String
flash.text.engine::EastAsianJustifier
  (String=,String=,String=) justificationStyle:String composeTrailingIdeographicSpaces:Boolean clone():TextJustifier
flash.text.engine::ElementFormat
  (FontDescription=,Number=,uint=,Number=,String=,String=,String=,Number=,String=,Number=,Number=,String=,String=,String=,String=,String=,String=)
  fontDescription:FontDescription fontSize:Number color:uint alpha:Number textRotation:String dominantBaseline:String
  alignmentBaseline:String baselineShift:Number kerning:String trackingRight:Number trackingLeft:Number locale:String
  breakOpportunity:String digitCase:String digitWidth:String ligatureLevel:String typographicCase:String locked:Boolean
  clone():ElementFormat getFontMetrics():FontMetrics
flash.text.engine::FontDescription
  (String=,String=,String=,String=,String=,String=) fontName:String fontWeight:String fontPosture:String fontLookup:String
  renderingMode:String cffHinting:String locked:Boolean clone():FontDescription ^isFontCompatible(String,String,String):Boolean
  ^isDeviceFontCompatible(String,String,String):Boolean
flash.text.engine::GraphicElement
  (DisplayObject=,Number=,Number=,ElementFormat=,EventDispatcher=,String=) graphic:DisplayObject elementWidth:Number elementHeight:Number
flash.text.engine::GroupElement
  (Vector<ContentElement>=,ElementFormat=,EventDispatcher=,String=) elementCount-:int getElementAt(int):ContentElement
  getElementIndex(ContentElement):int getElementAtCharIndex(int):ContentElement setElements(Vector<ContentElement>):void
  replaceElements(int,int,Vector<ContentElement>):Vector<ContentElement> groupElements(int,int):GroupElement ungroupElements(int):void
  splitTextElement(int,int):TextElement mergeTextElements(int,int):TextElement
flash.text.engine::SpaceJustifier
  (String=,String=,Boolean=) letterSpacing:Boolean minimumSpacing:Number optimumSpacing:Number maximumSpacing:Number
flash.text.engine::TabStop
  (String=,Number=,String=) alignment:String position:Number decimalAlignmentToken:String
flash.text.engine::TextBlock
  (ContentElement=,Vector<TabStop>=,TextJustifier=,String=,String=,int=,Boolean=,FontDescription=,Number=) content:ContentElement
  tabStops:Vector<TabStop> textJustifier:TextJustifier lineRotation:String baselineZero:String bidiLevel:int
  applyNonLinearFontScaling:Boolean baselineFontDescription:FontDescription baselineFontSize:Number userData:* firstLine-:TextLine
  lastLine-:TextLine firstInvalidLine-:TextLine textLineCreationResult-:String
  createTextLine(TextLine=,Number=,Number=,Boolean=):TextLine recreateTextLine(TextLine,TextLine=,Number=,Number=,Boolean=):TextLine
  releaseLines(TextLine,TextLine):void releaseLineCreationData():void getTextLineAtCharIndex(int):TextLine
  findNextAtomBoundary(int):int findPreviousAtomBoundary(int):int findNextWordBoundary(int):int findPreviousWordBoundary(int):int
  dump():String
flash.text.engine::TextElement
  (String=,ElementFormat=,EventDispatcher=,String=) text:String replaceText(int,int,String):void
flash.text.engine::TextJustifier
  ^getJustifierForLocale(String):TextJustifier locale-:String lineJustification:String clone():TextJustifier
flash.text.engine::TextLine
  ascent-:Number descent-:Number textWidth-:Number unjustifiedTextWidth-:Number textHeight-:Number totalAscent-:Number
  totalDescent-:Number totalHeight-:Number specifiedWidth-:Number hasTabs-:Boolean hasGraphicElement-:Boolean atomCount-:int
  textBlockBeginIndex-:int rawTextLength-:int textBlock-:TextBlock nextLine-:TextLine previousLine-:TextLine validity:String
  userData:* mirrorRegions-:Vector<TextLineMirrorRegion> getMirrorRegion(EventDispatcher):TextLineMirrorRegion
  getBaselinePosition(String):Number getAtomBounds(int):Rectangle getAtomCenter(int):Number getAtomBidiLevel(int):int
  getAtomGraphic(int):DisplayObject getAtomTextRotation(int):String getAtomTextBlockBeginIndex(int):int
  getAtomTextBlockEndIndex(int):int getAtomWordBoundaryOnLeft(int):Boolean getAtomIndexAtCharIndex(int):int
  getAtomIndexAtPoint(Number,Number):int flushAtomData():void dump():String
flash.text.engine::TextLineMirrorRegion
  bounds-:Rectangle element-:ContentElement mirror-:EventDispatcher nextRegion-:TextLineMirrorRegion
  previousRegion-:TextLineMirrorRegion textLine-:TextLine
)";

} // namespace

std::string_view textEngineSignatures() { return kText; }

} // namespace flash::avm2
