#include "flash/avm2/bindings/Library.h"

namespace flash::avm2
{

namespace
{

// Sound, net, system, text and what is left.
constexpr std::string_view kText = R"(
flash.media::AVTagData
  (String,Number) data-:String localTime-:Number
flash.media::Camera
  ^names-:Array ^isSupported-:Boolean ^getCamera(String=):Camera activityLevel-:Number bandwidth-:int currentFPS-:Number fps-:Number
  height-:int index-:int keyFrameInterval-:int loopback-:Boolean motionLevel-:int motionTimeout-:int muted-:Boolean name-:String
  quality-:int width-:int setLoopback(Boolean=):void setMode(int,int,Number,Boolean=):void setMotionLevel(int,int=):void
  setQuality(int,int):void setKeyFrameInterval(int):void drawToBitmapData(BitmapData):void copyToByteArray(Rectangle,ByteArray):void
  copyToVector(Rectangle,Vector<uint>):void
flash.media::ID3Info
  .songName:String .artist:String .album:String .year:String .comment:String .genre:String .track:String
flash.media::Microphone
  ^names-:Array ^isSupported-:Boolean ^getMicrophone(int=):Microphone ^getEnhancedMicrophone(int=):Microphone activityLevel-:Number
  gain:Number index-:int muted-:Boolean name-:String rate:int silenceLevel-:Number silenceTimeout-:int codec:String framesPerPacket:int
  encodeQuality:int enableVAD:Boolean noiseSuppressionLevel:int useEchoSuppression-:Boolean soundTransform:SoundTransform
  enhancedOptions:MicrophoneEnhancedOptions setLoopBack(Boolean=):void setSilenceLevel(Number,int=):void
  setUseEchoSuppression(Boolean):void
flash.media::MicrophoneEnhancedOptions
  () mode:String echoPath:int nonLinearProcessing:Boolean autoGain:Boolean isVoiceDetected:int
flash.media::VideoStreamSettings
  () width-:int height-:int fps-:Number bandwidth-:int quality-:int keyFrameInterval-:int codec-:String setMode(int,int,Number):void
  setQuality(int,int):void setKeyFrameInterval(int):void
flash.media::H264VideoStreamSettings
  () profile-:String level-:String codec-:String setProfileLevel(String,String):void
flash.media::Sound
  (URLRequest=,SoundLoaderContext=) load(URLRequest,SoundLoaderContext=):void
  loadCompressedDataFromByteArray(ByteArray,uint):void loadPCMFromByteArray(ByteArray,uint,String=,Boolean=,Number=):void url-:String
  isURLInaccessible-:Boolean play(Number=,int=,SoundTransform=):SoundChannel length-:Number isBuffering-:Boolean bytesLoaded-:uint
  bytesTotal-:int id3-:ID3Info close():void extract(ByteArray,Number,Number=):Number
flash.media::SoundChannel
  position-:Number soundTransform:SoundTransform leftPeak-:Number rightPeak-:Number stop():void
flash.media::SoundLoaderContext
  (Number=,Boolean=) .bufferTime:Number .checkPolicyFile:Boolean
flash.media::SoundMixer
  ^stopAll():void ^computeSpectrum(ByteArray,Boolean=,int=):void ^bufferTime:int ^soundTransform:SoundTransform
  ^areSoundsInaccessible():Boolean ^useSpeakerphoneForVoice:Boolean ^audioPlaybackMode:String
flash.media::SoundTransform
  (Number=,Number=) volume:Number leftToLeft:Number leftToRight:Number rightToRight:Number rightToLeft:Number pan:Number
flash.media::Video
  (int=,int=) deblocking:int smoothing:Boolean videoWidth-:int videoHeight-:int clear():void attachNetStream(NetStream):void
  attachCamera(Camera):void
flash.net::FileFilter
  (String,String,String=) description:String extension:String macType:String
flash.net::FileReference
  () creationDate-:Date creator-:String modificationDate-:Date name-:String size-:Number type-:String data-:ByteArray cancel():void
  download(URLRequest,String=):void upload(URLRequest,String=,Boolean=):void browse(Array=):Boolean save(*,String=):void load():void
flash.net::FileReferenceList
  () fileList-:Array browse(Array=):Boolean
flash.net::LocalConnection
  () ^isSupported-:Boolean close():void connect(String):void domain-:String send(String,String,...):void client:Object
  isPerUser:Boolean allowDomain(...):void allowInsecureDomain(...):void
flash.net::NetConnection
  () ^defaultObjectEncoding:uint connected-:Boolean uri-:String connect(String,...):void client:Object objectEncoding:uint
  proxyType:String connectedProxyType-:String usingTLS-:Boolean protocol-:String maxPeerConnections:uint nearID-:String farID-:String
  nearNonce-:String farNonce-:String unconnectedPeerStreams-:Array close():void addHeader(String,Boolean=,Object=):void
  call(String,Responder,...):void
flash.net::NetStream
  (NetConnection,String=) attach(NetConnection):void close():void attachAudio(Microphone):void attachCamera(Camera,int=):void
  send(String,...):void bufferTime:Number maxPauseBufferTime:Number receiveAudio(Boolean):void receiveVideo(Boolean):void
  receiveVideoFPS(Number):void pause():void resume():void togglePause():void seek(Number):void play(...):void
  play2(NetStreamPlayOptions):void info-:NetStreamInfo multicastInfo-:NetStreamMulticastInfo publish(String=,String=):void time-:Number
  currentFPS-:Number bufferLength-:Number liveDelay-:Number bytesLoaded-:uint bytesTotal-:uint decodedFrames-:uint
  videoCodec-:uint audioCodec-:uint bufferTimeMax:Number backBufferTime:Number backBufferLength-:Number inBufferSeek:Boolean
  onPeerConnect(NetStream):Boolean objectEncoding-:uint peerStreams-:Array farID-:String nearNonce-:String farNonce-:String
  audioReliable:Boolean videoReliable:Boolean dataReliable:Boolean audioSampleAccess:Boolean videoSampleAccess:Boolean
  appendBytes(ByteArray):void appendBytesAction(String):void useHardwareDecoder:Boolean useJitterBuffer:Boolean
  videoStreamSettings:VideoStreamSettings client:Object soundTransform:SoundTransform checkPolicyFile:Boolean step(int):void
  dispose():void
flash.net::NetStreamPlayOptions
  () .streamName:String .oldStreamName:String .start:Number .len:Number .offset:Number .transition:String
flash.net::NetStreamInfo
  (Number,Number,Number,Number,Number,Number,Number,Number,Number,Number,Number,Number,Number,Number,Number,Number,Number,Number,Number,Object=,Object=,Object=)
  currentBytesPerSecond-:Number byteCount-:Number maxBytesPerSecond-:Number audioBytesPerSecond-:Number audioByteCount-:Number
  videoBytesPerSecond-:Number videoByteCount-:Number dataBytesPerSecond-:Number dataByteCount-:Number playbackBytesPerSecond-:Number
  droppedFrames-:Number audioBufferByteLength-:Number videoBufferByteLength-:Number dataBufferByteLength-:Number
  audioBufferLength-:Number videoBufferLength-:Number dataBufferLength-:Number SRTT-:Number audioLossRate-:Number
  videoLossRate-:Number metaData-:Object xmpData-:Object uri-:String resourceName-:String isLive-:Boolean toString():String
flash.net::Responder
  (Function,Function=)
flash.net::SharedObject
  ^getLocal(String,String=,Boolean=):SharedObject ^getRemote(String,String=,Object=,Boolean=):SharedObject ^deleteAll(String):int
  ^getDiskUsage(String):int ^defaultObjectEncoding:uint ^preventBackup:Boolean data-:Object connect(NetConnection,String=):void
  close():void flush(int=):String size-:uint fps+:Number send(...):void client:Object objectEncoding:uint clear():void
  setProperty(String,Object=):void setDirty(String):void
flash.net::Socket
  (String=,int=) bytesAvailable-:uint connected-:Boolean objectEncoding:uint endian:String bytesPending-:uint timeout:uint
  connect(String,int):void flush():void close():void readBoolean():Boolean readByte():int readBytes(ByteArray,uint=,uint=):void
  readDouble():Number readFloat():Number readInt():int readMultiByte(uint,String):String readObject():* readShort():int
  readUnsignedByte():uint readUnsignedInt():uint readUnsignedShort():uint readUTF():String readUTFBytes(uint):String
  writeBoolean(Boolean):void writeByte(int):void writeBytes(ByteArray,uint=,uint=):void writeDouble(Number):void
  writeFloat(Number):void writeInt(int):void writeMultiByte(String,String):void writeObject(*):void writeShort(int):void
  writeUnsignedInt(uint):void writeUTF(String):void writeUTFBytes(String):void
flash.net::URLLoader
  (URLRequest=) .data:* .dataFormat:String .bytesLoaded:uint .bytesTotal:uint load(URLRequest):void close():void
  addEventListener(String,Function,Boolean=,int=,Boolean=):void
flash.net::URLRequest
  (String=) url:String data:Object method:String contentType:String requestHeaders:Array digest:String useRedirectedURL(URLRequest,Boolean=,String=,String=):void
flash.net::URLRequestHeader
  (String=,String=) .name:String .value:String
flash.net::URLStream
  () connected-:Boolean bytesAvailable-:uint objectEncoding:uint endian:String diskCacheEnabled-:Boolean position:Number length-:Number
  load(URLRequest):void close():void stop():void readBytes(ByteArray,uint=,uint=):void readBoolean():Boolean readByte():int
  readUnsignedByte():uint readShort():int readUnsignedShort():uint readUnsignedInt():uint readInt():int readFloat():Number
  readDouble():Number readMultiByte(uint,String):String readUTF():String readUTFBytes(uint):String readObject():*
flash.net::URLVariables
  (String=) decode(String):void toString():String
flash.net::XMLSocket
  (String=,int=) timeout:int connected-:Boolean connect(String,int):void send(*):void close():void
flash.printing::PrintJob
  () ^isSupported-:Boolean start():Boolean send():void addPage(Sprite,Rectangle=,PrintJobOptions=,int=):void paperHeight-:int
  paperWidth-:int pageHeight-:int pageWidth-:int orientation-:String
flash.printing::PrintJobOptions
  (Boolean=) .printAsBitmap:Boolean
flash.system::ApplicationDomain
  (ApplicationDomain=) ^currentDomain-:ApplicationDomain ^MIN_DOMAIN_MEMORY_LENGTH-:uint parentDomain-:ApplicationDomain
  getDefinition(String):Object hasDefinition(String):Boolean getQualifiedDefinitionNames():Vector<String> domainMemory:ByteArray
flash.system::Capabilities
  ^isEmbeddedInAcrobat-:Boolean ^hasEmbeddedVideo-:Boolean ^hasAudio-:Boolean ^avHardwareDisable-:Boolean ^hasAccessibility-:Boolean
  ^hasAudioEncoder-:Boolean ^hasMP3-:Boolean ^hasPrinting-:Boolean ^hasScreenBroadcast-:Boolean ^hasScreenPlayback-:Boolean
  ^hasStreamingAudio-:Boolean ^hasStreamingVideo-:Boolean ^hasVideoEncoder-:Boolean ^isDebugger-:Boolean
  ^localFileReadDisable-:Boolean ^language-:String ^manufacturer-:String ^os-:String ^cpuArchitecture-:String ^playerType-:String
  ^serverString-:String ^version-:String ^screenColor-:String ^pixelAspectRatio-:Number ^screenDPI-:Number ^screenResolutionX-:Number
  ^screenResolutionY-:Number ^touchscreenType-:String ^hasIME-:Boolean ^hasTLS-:Boolean ^maxLevelIDC-:String
  ^supports32BitProcesses-:Boolean ^supports64BitProcesses-:Boolean ^_internal-:uint ^hasMultiChannelAudio(String):Boolean
flash.system::JPEGLoaderContext
  (Number=,Boolean=,ApplicationDomain=,SecurityDomain=) .deblockingFilter:Number .checkPolicyFile:Boolean
  .applicationDomain:ApplicationDomain .securityDomain:SecurityDomain .allowCodeImport:Boolean
  .requestedContentParent:DisplayObjectContainer .parameters:Object .imageDecodingPolicy:String
flash.system::LoaderContext
  (Boolean=,ApplicationDomain=,SecurityDomain=) .checkPolicyFile:Boolean .applicationDomain:ApplicationDomain
  .securityDomain:SecurityDomain .allowCodeImport:Boolean .requestedContentParent:DisplayObjectContainer .parameters:Object
  .imageDecodingPolicy:String
flash.system::Security
  ^allowDomain(...):void ^allowInsecureDomain(...):void ^loadPolicyFile(String):void ^exactSettings:Boolean
  ^disableAVM1Loading:Boolean ^showSettings(String=):void ^sandboxType-:String ^pageDomain-:String
flash.system::SecurityDomain
  ^currentDomain-:SecurityDomain
flash.system::System
  ^ime-:IME ^setClipboard(String):void ^totalMemoryNumber-:Number ^freeMemory-:Number ^privateMemory-:Number ^totalMemory-:uint
  ^useCodePage:Boolean ^vmVersion-:String ^pause():void ^resume():void ^exit(uint):void ^gc():void ^pauseForGCIfCollectionImminent(Number=):void
  ^disposeXML(XML):void ^processCPUUsage-:Number
flash.system::IME
  ^enabled:Boolean ^conversionMode:String ^setCompositionString(String):void ^doConversion():void ^compositionSelectionChanged(int,int):void
  ^compositionAbandoned():void ^isSupported-:Boolean
flash.system::Worker
  ^isSupported-:Boolean ^current-:Worker isPrimordial-:Boolean state-:String start():void terminate():Boolean
  setSharedProperty(String,*):void getSharedProperty(String):* createMessageChannel(Worker):MessageChannel
flash.system::WorkerDomain
  ^isSupported-:Boolean ^current-:WorkerDomain createWorker(ByteArray,Boolean=):Worker listWorkers():Vector<Worker>
flash.system::MessageChannel
  messageAvailable-:Boolean state-:String send(*,int=):void receive(Boolean=):* close():void
flash.concurrent::Mutex
  () ^isSupported-:Boolean lock():void tryLock():Boolean unlock():void
flash.concurrent::Condition
  (Mutex) ^isSupported-:Boolean mutex-:Mutex wait(Number=):Boolean notify():void notifyAll():void
flash.system::SystemUpdater
  () update(String):void cancel():void
flash.desktop::Clipboard
  () ^generalClipboard-:Clipboard formats-:Array clear():void clearData(String):void setData(String,Object,Boolean=):Boolean
  setDataHandler(String,Function,Boolean=):Boolean getData(String,String=):Object hasFormat(String):Boolean
flash.external::ExternalInterface
  ^marshallExceptions:Boolean ^available-:Boolean ^addCallback(String,Function):void ^call(String,...):* ^objectID-:String
flash.text::CSMSettings
  (Number,Number,Number) .fontSize:Number .insideCutoff:Number .outsideCutoff:Number
flash.text::Font
  () ^enumerateFonts(Boolean=):Array ^registerFont(Class):void fontName-:String fontStyle-:String fontType-:String hasGlyphs(String):Boolean
flash.text::StaticText
  () text-:String
flash.text::StyleSheet
  () styleNames-:Array getStyle(String):Object setStyle(String,Object):void clear():void transform(Object):TextFormat
  parseCSS(String):void
flash.text::TextField
  () ^isFontCompatible(String,String):Boolean alwaysShowSelection:Boolean antiAliasType:String autoSize:String background:Boolean
  backgroundColor:uint border:Boolean borderColor:uint bottomScrollV-:int caretIndex-:int condenseWhite:Boolean
  defaultTextFormat:TextFormat embedFonts:Boolean gridFitType:String htmlText:String length-:int textInteractionMode-:String
  maxChars:int maxScrollH-:int maxScrollV-:int mouseWheelEnabled:Boolean multiline:Boolean numLines-:int displayAsPassword:Boolean
  restrict:String scrollH:int scrollV:int selectable:Boolean selectedText-:String selectionBeginIndex-:int selectionEndIndex-:int
  sharpness:Number styleSheet:StyleSheet text:String textColor:uint textHeight-:Number textWidth-:Number thickness:Number type:String
  wordWrap:Boolean useRichTextClipboard:Boolean appendText(String):void copyRichText():String getXMLText(int=,int=):String
  insertXMLText(int,int,String,Boolean=):void pasteRichText(String):Boolean getCharBoundaries(int):Rectangle
  getCharIndexAtPoint(Number,Number):int getFirstCharInParagraph(int):int getLineIndexAtPoint(Number,Number):int
  getLineIndexOfChar(int):int getLineLength(int):int getLineMetrics(int):TextLineMetrics getLineOffset(int):int
  getLineText(int):String getParagraphLength(int):int getTextFormat(int=,int=):TextFormat getTextRuns(int=,int=):Array
  getRawText():String replaceSelectedText(String):void replaceText(int,int,String):void setSelection(int,int):void
  setTextFormat(TextFormat,int=,int=):void getImageReference(String):DisplayObject
flash.text::TextFormat
  (String=,Object=,Object=,Object=,Object=,Object=,String=,String=,String=,Object=,Object=,Object=,Object=) align:String
  blockIndent:Object bold:Object bullet:Object color:Object display:String font:String indent:Object italic:Object kerning:Object
  leading:Object leftMargin:Object letterSpacing:Object rightMargin:Object size:Object tabStops:Array target:String underline:Object
  url:String
flash.text::TextLineMetrics
  (Number,Number,Number,Number,Number,Number) .x:Number .width:Number .height:Number .ascent:Number .descent:Number .leading:Number
flash.text::TextSnapshot
  () charCount-:int findText(int,String,Boolean):int getSelected(int,int):Boolean getSelectedText(Boolean=):String
  getText(int,int,Boolean=):String getTextRunInfo(int,int):Array hitTestTextNearPos(Number,Number,Number=):Number
  setSelectColor(uint=):void setSelected(int,int,Boolean):void
flash.text::TextRenderer
  ^maxLevel:int ^displayMode:String ^antiAliasType:String ^setAdvancedAntiAliasingTable(String,String,String,Array):void
flash.text::TextRun
  (int,int,TextFormat) .beginIndex:int .endIndex:int .textFormat:TextFormat
flash.ui::ContextMenu
  () ^isSupported-:Boolean builtInItems:ContextMenuBuiltInItems customItems:Array link:URLRequest clipboardMenu:Boolean
  clipboardItems:ContextMenuClipboardItems hideBuiltInItems():void clone():ContextMenu
flash.ui::ContextMenuBuiltInItems
  () save:Boolean zoom:Boolean quality:Boolean play:Boolean loop:Boolean rewind:Boolean forwardAndBack:Boolean print:Boolean
  clone():ContextMenuBuiltInItems
flash.ui::ContextMenuClipboardItems
  () cut:Boolean copy:Boolean paste:Boolean clear:Boolean selectAll:Boolean clone():ContextMenuClipboardItems
flash.ui::ContextMenuItem
  (String,Boolean=,Boolean=,Boolean=) caption:String separatorBefore:Boolean visible:Boolean enabled:Boolean clone():ContextMenuItem
flash.ui::Keyboard
  ^capsLock-:Boolean ^numLock-:Boolean ^isAccessible():Boolean ^hasVirtualKeyboard-:Boolean ^physicalKeyboardType-:String *:uint
flash.ui::KeyLocation
  *:uint
flash.ui::Mouse
  ^hide():void ^show():void ^supportsCursor-:Boolean ^cursor:String ^registerCursor(String,MouseCursorData):void
  ^unregisterCursor(String):void ^supportsNativeCursor-:Boolean
flash.ui::MouseCursorData
  () data:Vector<BitmapData> hotSpot:Point frameRate:Number
flash.ui::Multitouch
  ^inputMode:String ^supportsTouchEvents-:Boolean ^supportsGestureEvents-:Boolean ^supportedGestures-:Vector<String>
  ^maxTouchPoints-:int ^mapTouchToMouse:Boolean
flash.ui::GameInput
  () ^numDevices-:int ^isSupported-:Boolean ^getDeviceAt(int):GameInputDevice
flash.sensors::Accelerometer
  () ^isSupported-:Boolean muted-:Boolean setRequestedUpdateInterval(Number):void
flash.sensors::Geolocation
  () ^isSupported-:Boolean muted-:Boolean setRequestedUpdateInterval(Number):void
flash.trace::Trace
  ^setLevel(int,int=):* ^getLevel(int=):int ^setListener(Function):* ^getListener():Function
flash.events::EventPhase
  *:uint
flash.display::BitmapDataChannel
  *:uint
flash.display::ActionScriptVersion
  *:uint
flash.display::SWFVersion
  *:uint
flash.net::ObjectEncoding
  *:uint
flash.xml::XMLNodeType
  *:uint
flash.display::GraphicsPathCommand
  *:int
)";

} // namespace

std::string_view mediaSignatures() { return kText; }

} // namespace flash::avm2
