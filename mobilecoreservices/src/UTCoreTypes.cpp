#include <MobileCoreServices/UTCoreTypes.h>

// Abstract kinds.
NSString* const kUTTypeItem = objc::constantString("public.item");
NSString* const kUTTypeContent = objc::constantString("public.content");
NSString* const kUTTypeCompositeContent = objc::constantString("public.composite-content");
NSString* const kUTTypeData = objc::constantString("public.data");
NSString* const kUTTypeArchive = objc::constantString("public.archive");
NSString* const kUTTypeDiskImage = objc::constantString("public.disk-image");
NSString* const kUTTypeURL = objc::constantString("public.url");
NSString* const kUTTypeFileURL = objc::constantString("public.file-url");
NSString* const kUTTypeExecutable = objc::constantString("public.executable");
NSString* const kUTTypeContact = objc::constantString("public.contact");
NSString* const kUTTypeCalendarEvent = objc::constantString("public.calendar-event");

// File system.
NSString* const kUTTypeDirectory = objc::constantString("public.directory");
NSString* const kUTTypeFolder = objc::constantString("public.folder");
NSString* const kUTTypeVolume = objc::constantString("public.volume");
NSString* const kUTTypePackage = objc::constantString("com.apple.package");
NSString* const kUTTypeBundle = objc::constantString("com.apple.bundle");
NSString* const kUTTypeSymLink = objc::constantString("public.symlink");

// Text.
NSString* const kUTTypeText = objc::constantString("public.text");
NSString* const kUTTypePlainText = objc::constantString("public.plain-text");
NSString* const kUTTypeUTF8PlainText = objc::constantString("public.utf8-plain-text");
NSString* const kUTTypeUTF16ExternalPlainText =
    objc::constantString("public.utf16-external-plain-text");
NSString* const kUTTypeUTF16PlainText = objc::constantString("public.utf16-plain-text");
NSString* const kUTTypeDelimitedText = objc::constantString("public.delimited-values-text");
NSString* const kUTTypeCommaSeparatedText =
    objc::constantString("public.comma-separated-values-text");
NSString* const kUTTypeTabSeparatedText = objc::constantString("public.tab-separated-values-text");
NSString* const kUTTypeRTF = objc::constantString("public.rtf");
NSString* const kUTTypeHTML = objc::constantString("public.html");
NSString* const kUTTypeXML = objc::constantString("public.xml");
NSString* const kUTTypeJSON = objc::constantString("public.json");
NSString* const kUTTypeLog = objc::constantString("public.log");
NSString* const kUTTypeSourceCode = objc::constantString("public.source-code");
NSString* const kUTTypeCSource = objc::constantString("public.c-source");
NSString* const kUTTypeCHeader = objc::constantString("public.c-header");
NSString* const kUTTypeCPlusPlusSource = objc::constantString("public.c-plus-plus-source");
NSString* const kUTTypeCPlusPlusHeader = objc::constantString("public.c-plus-plus-header");
NSString* const kUTTypeObjectiveCSource = objc::constantString("public.objective-c-source");
NSString* const kUTTypeSwiftSource = objc::constantString("public.swift-source");
NSString* const kUTTypeScript = objc::constantString("public.script");
NSString* const kUTTypeShellScript = objc::constantString("public.shell-script");
NSString* const kUTTypePythonScript = objc::constantString("public.python-script");
NSString* const kUTTypeJavaScript = objc::constantString("com.netscape.javascript-source");
NSString* const kUTTypeVCard = objc::constantString("public.vcard");

// Images.
NSString* const kUTTypeImage = objc::constantString("public.image");
NSString* const kUTTypeJPEG = objc::constantString("public.jpeg");
NSString* const kUTTypeJPEG2000 = objc::constantString("public.jpeg-2000");
NSString* const kUTTypePNG = objc::constantString("public.png");
NSString* const kUTTypeGIF = objc::constantString("com.compuserve.gif");
NSString* const kUTTypeTIFF = objc::constantString("public.tiff");
NSString* const kUTTypeBMP = objc::constantString("com.microsoft.bmp");
NSString* const kUTTypeICO = objc::constantString("com.microsoft.ico");
NSString* const kUTTypeScalableVectorGraphics = objc::constantString("public.svg-image");
NSString* const kUTTypeRawImage = objc::constantString("public.camera-raw-image");

// Audio and video.
NSString* const kUTTypeAudiovisualContent = objc::constantString("public.audiovisual-content");
NSString* const kUTTypeAudio = objc::constantString("public.audio");
NSString* const kUTTypeMovie = objc::constantString("public.movie");
NSString* const kUTTypeVideo = objc::constantString("public.video");
NSString* const kUTTypeMP3 = objc::constantString("public.mp3");
NSString* const kUTTypeMPEG4 = objc::constantString("public.mpeg-4");
NSString* const kUTTypeMPEG4Audio = objc::constantString("public.mpeg-4-audio");
NSString* const kUTTypeMPEG = objc::constantString("public.mpeg");
NSString* const kUTTypeQuickTimeMovie = objc::constantString("com.apple.quicktime-movie");
NSString* const kUTTypeAVIMovie = objc::constantString("public.avi");
NSString* const kUTTypeWaveformAudio = objc::constantString("com.microsoft.waveform-audio");
NSString* const kUTTypeAudioInterchangeFileFormat = objc::constantString("public.aiff-audio");
NSString* const kUTTypeMIDIAudio = objc::constantString("public.midi-audio");

// Documents.
NSString* const kUTTypePDF = objc::constantString("com.adobe.pdf");
NSString* const kUTTypeSpreadsheet = objc::constantString("public.spreadsheet");
NSString* const kUTTypePresentation = objc::constantString("public.presentation");

// Archives and other data.
NSString* const kUTTypeZipArchive = objc::constantString("public.zip-archive");
NSString* const kUTTypeGNUZipArchive = objc::constantString("org.gnu.gnu-zip-archive");
NSString* const kUTTypeBzip2Archive = objc::constantString("public.bzip2-archive");
NSString* const kUTTypeFont = objc::constantString("public.font");
NSString* const kUTTypePropertyList = objc::constantString("com.apple.property-list");
NSString* const kUTTypeX509Certificate = objc::constantString("public.x509-certificate");
