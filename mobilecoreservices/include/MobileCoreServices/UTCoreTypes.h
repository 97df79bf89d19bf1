// Identifiers of the types the system declares, as immortal strings that
// compare equal (UTTypeEqual) to the identifiers the lookups answer.
#pragma once

#include <objc/string.h>

// Abstract kinds.
extern NSString* const kUTTypeItem;              // "public.item"
extern NSString* const kUTTypeContent;           // "public.content"
extern NSString* const kUTTypeCompositeContent;  // "public.composite-content"
extern NSString* const kUTTypeData;              // "public.data"
extern NSString* const kUTTypeArchive;           // "public.archive"
extern NSString* const kUTTypeDiskImage;         // "public.disk-image"
extern NSString* const kUTTypeURL;               // "public.url"
extern NSString* const kUTTypeFileURL;           // "public.file-url"
extern NSString* const kUTTypeExecutable;        // "public.executable"
extern NSString* const kUTTypeContact;           // "public.contact"
extern NSString* const kUTTypeCalendarEvent;     // "public.calendar-event"

// File system.
extern NSString* const kUTTypeDirectory;  // "public.directory"
extern NSString* const kUTTypeFolder;     // "public.folder"
extern NSString* const kUTTypeVolume;     // "public.volume"
extern NSString* const kUTTypePackage;    // "com.apple.package"
extern NSString* const kUTTypeBundle;     // "com.apple.bundle"
extern NSString* const kUTTypeSymLink;    // "public.symlink"

// Text.
extern NSString* const kUTTypeText;                    // "public.text"
extern NSString* const kUTTypePlainText;               // "public.plain-text"
extern NSString* const kUTTypeUTF8PlainText;           // "public.utf8-plain-text"
extern NSString* const kUTTypeUTF16ExternalPlainText;  // "public.utf16-external-plain-text"
extern NSString* const kUTTypeUTF16PlainText;          // "public.utf16-plain-text"
extern NSString* const kUTTypeDelimitedText;           // "public.delimited-values-text"
extern NSString* const kUTTypeCommaSeparatedText;      // "public.comma-separated-values-text"
extern NSString* const kUTTypeTabSeparatedText;        // "public.tab-separated-values-text"
extern NSString* const kUTTypeRTF;                     // "public.rtf"
extern NSString* const kUTTypeHTML;                    // "public.html"
extern NSString* const kUTTypeXML;                     // "public.xml"
extern NSString* const kUTTypeJSON;                    // "public.json"
extern NSString* const kUTTypeLog;                     // "public.log"
extern NSString* const kUTTypeSourceCode;              // "public.source-code"
extern NSString* const kUTTypeCSource;                 // "public.c-source"
extern NSString* const kUTTypeCHeader;                 // "public.c-header"
extern NSString* const kUTTypeCPlusPlusSource;         // "public.c-plus-plus-source"
extern NSString* const kUTTypeCPlusPlusHeader;         // "public.c-plus-plus-header"
extern NSString* const kUTTypeObjectiveCSource;        // "public.objective-c-source"
extern NSString* const kUTTypeSwiftSource;             // "public.swift-source"
extern NSString* const kUTTypeScript;                  // "public.script"
extern NSString* const kUTTypeShellScript;             // "public.shell-script"
extern NSString* const kUTTypePythonScript;            // "public.python-script"
extern NSString* const kUTTypeJavaScript;              // "com.netscape.javascript-source"
extern NSString* const kUTTypeVCard;                   // "public.vcard"

// Images.
extern NSString* const kUTTypeImage;                   // "public.image"
extern NSString* const kUTTypeJPEG;                    // "public.jpeg"
extern NSString* const kUTTypeJPEG2000;                // "public.jpeg-2000"
extern NSString* const kUTTypePNG;                     // "public.png"
extern NSString* const kUTTypeGIF;                     // "com.compuserve.gif"
extern NSString* const kUTTypeTIFF;                    // "public.tiff"
extern NSString* const kUTTypeBMP;                     // "com.microsoft.bmp"
extern NSString* const kUTTypeICO;                     // "com.microsoft.ico"
extern NSString* const kUTTypeScalableVectorGraphics;  // "public.svg-image"
extern NSString* const kUTTypeRawImage;                // "public.camera-raw-image"

// Audio and video.
extern NSString* const kUTTypeAudiovisualContent;          // "public.audiovisual-content"
extern NSString* const kUTTypeAudio;                       // "public.audio"
extern NSString* const kUTTypeMovie;                       // "public.movie"
extern NSString* const kUTTypeVideo;                       // "public.video"
extern NSString* const kUTTypeMP3;                         // "public.mp3"
extern NSString* const kUTTypeMPEG4;                       // "public.mpeg-4"
extern NSString* const kUTTypeMPEG4Audio;                  // "public.mpeg-4-audio"
extern NSString* const kUTTypeMPEG;                        // "public.mpeg"
extern NSString* const kUTTypeQuickTimeMovie;              // "com.apple.quicktime-movie"
extern NSString* const kUTTypeAVIMovie;                    // "public.avi"
extern NSString* const kUTTypeWaveformAudio;               // "com.microsoft.waveform-audio"
extern NSString* const kUTTypeAudioInterchangeFileFormat;  // "public.aiff-audio"
extern NSString* const kUTTypeMIDIAudio;                   // "public.midi-audio"

// Documents.
extern NSString* const kUTTypePDF;           // "com.adobe.pdf"
extern NSString* const kUTTypeSpreadsheet;   // "public.spreadsheet"
extern NSString* const kUTTypePresentation;  // "public.presentation"

// Archives and other data.
extern NSString* const kUTTypeZipArchive;       // "public.zip-archive"
extern NSString* const kUTTypeGNUZipArchive;    // "org.gnu.gnu-zip-archive"
extern NSString* const kUTTypeBzip2Archive;     // "public.bzip2-archive"
extern NSString* const kUTTypeFont;             // "public.font"
extern NSString* const kUTTypePropertyList;     // "com.apple.property-list"
extern NSString* const kUTTypeX509Certificate;  // "public.x509-certificate"
