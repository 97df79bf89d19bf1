// Identifiers of the types the system declares, as immortal strings that
// compare equal (UTTypeEqual) to the identifiers the lookups answer.
#pragma once

#include <objc/string.h>

// Abstract kinds.
PV_EXPORT extern NSString* const kUTTypeItem;              // "public.item"
PV_EXPORT extern NSString* const kUTTypeContent;           // "public.content"
PV_EXPORT extern NSString* const kUTTypeCompositeContent;  // "public.composite-content"
PV_EXPORT extern NSString* const kUTTypeData;              // "public.data"
PV_EXPORT extern NSString* const kUTTypeArchive;           // "public.archive"
PV_EXPORT extern NSString* const kUTTypeDiskImage;         // "public.disk-image"
PV_EXPORT extern NSString* const kUTTypeURL;               // "public.url"
PV_EXPORT extern NSString* const kUTTypeFileURL;           // "public.file-url"
PV_EXPORT extern NSString* const kUTTypeExecutable;        // "public.executable"
PV_EXPORT extern NSString* const kUTTypeContact;           // "public.contact"
PV_EXPORT extern NSString* const kUTTypeCalendarEvent;     // "public.calendar-event"

// File system.
PV_EXPORT extern NSString* const kUTTypeDirectory;  // "public.directory"
PV_EXPORT extern NSString* const kUTTypeFolder;     // "public.folder"
PV_EXPORT extern NSString* const kUTTypeVolume;     // "public.volume"
PV_EXPORT extern NSString* const kUTTypePackage;    // "com.apple.package"
PV_EXPORT extern NSString* const kUTTypeBundle;     // "com.apple.bundle"
PV_EXPORT extern NSString* const kUTTypeSymLink;    // "public.symlink"

// Text.
PV_EXPORT extern NSString* const kUTTypeText;           // "public.text"
PV_EXPORT extern NSString* const kUTTypePlainText;      // "public.plain-text"
PV_EXPORT extern NSString* const kUTTypeUTF8PlainText;  // "public.utf8-plain-text"
PV_EXPORT extern NSString* const
    kUTTypeUTF16ExternalPlainText;                           // "public.utf16-external-plain-text"
PV_EXPORT extern NSString* const kUTTypeUTF16PlainText;      // "public.utf16-plain-text"
PV_EXPORT extern NSString* const kUTTypeDelimitedText;       // "public.delimited-values-text"
PV_EXPORT extern NSString* const kUTTypeCommaSeparatedText;  // "public.comma-separated-values-text"
PV_EXPORT extern NSString* const kUTTypeTabSeparatedText;    // "public.tab-separated-values-text"
PV_EXPORT extern NSString* const kUTTypeRTF;                 // "public.rtf"
PV_EXPORT extern NSString* const kUTTypeHTML;                // "public.html"
PV_EXPORT extern NSString* const kUTTypeXML;                 // "public.xml"
PV_EXPORT extern NSString* const kUTTypeJSON;                // "public.json"
PV_EXPORT extern NSString* const kUTTypeLog;                 // "public.log"
PV_EXPORT extern NSString* const kUTTypeSourceCode;          // "public.source-code"
PV_EXPORT extern NSString* const kUTTypeCSource;             // "public.c-source"
PV_EXPORT extern NSString* const kUTTypeCHeader;             // "public.c-header"
PV_EXPORT extern NSString* const kUTTypeCPlusPlusSource;     // "public.c-plus-plus-source"
PV_EXPORT extern NSString* const kUTTypeCPlusPlusHeader;     // "public.c-plus-plus-header"
PV_EXPORT extern NSString* const kUTTypeObjectiveCSource;    // "public.objective-c-source"
PV_EXPORT extern NSString* const kUTTypeSwiftSource;         // "public.swift-source"
PV_EXPORT extern NSString* const kUTTypeScript;              // "public.script"
PV_EXPORT extern NSString* const kUTTypeShellScript;         // "public.shell-script"
PV_EXPORT extern NSString* const kUTTypePythonScript;        // "public.python-script"
PV_EXPORT extern NSString* const kUTTypeJavaScript;          // "com.netscape.javascript-source"
PV_EXPORT extern NSString* const kUTTypeVCard;               // "public.vcard"

// Images.
PV_EXPORT extern NSString* const kUTTypeImage;                   // "public.image"
PV_EXPORT extern NSString* const kUTTypeJPEG;                    // "public.jpeg"
PV_EXPORT extern NSString* const kUTTypeJPEG2000;                // "public.jpeg-2000"
PV_EXPORT extern NSString* const kUTTypePNG;                     // "public.png"
PV_EXPORT extern NSString* const kUTTypeGIF;                     // "com.compuserve.gif"
PV_EXPORT extern NSString* const kUTTypeTIFF;                    // "public.tiff"
PV_EXPORT extern NSString* const kUTTypeBMP;                     // "com.microsoft.bmp"
PV_EXPORT extern NSString* const kUTTypeICO;                     // "com.microsoft.ico"
PV_EXPORT extern NSString* const kUTTypeScalableVectorGraphics;  // "public.svg-image"
PV_EXPORT extern NSString* const kUTTypeRawImage;                // "public.camera-raw-image"

// Audio and video.
PV_EXPORT extern NSString* const kUTTypeAudiovisualContent;  // "public.audiovisual-content"
PV_EXPORT extern NSString* const kUTTypeAudio;               // "public.audio"
PV_EXPORT extern NSString* const kUTTypeMovie;               // "public.movie"
PV_EXPORT extern NSString* const kUTTypeVideo;               // "public.video"
PV_EXPORT extern NSString* const kUTTypeMP3;                 // "public.mp3"
PV_EXPORT extern NSString* const kUTTypeMPEG4;               // "public.mpeg-4"
PV_EXPORT extern NSString* const kUTTypeMPEG4Audio;          // "public.mpeg-4-audio"
PV_EXPORT extern NSString* const kUTTypeMPEG;                // "public.mpeg"
PV_EXPORT extern NSString* const kUTTypeQuickTimeMovie;      // "com.apple.quicktime-movie"
PV_EXPORT extern NSString* const kUTTypeAVIMovie;            // "public.avi"
PV_EXPORT extern NSString* const kUTTypeWaveformAudio;       // "com.microsoft.waveform-audio"
PV_EXPORT extern NSString* const kUTTypeAudioInterchangeFileFormat;  // "public.aiff-audio"
PV_EXPORT extern NSString* const kUTTypeMIDIAudio;                   // "public.midi-audio"

// Documents.
PV_EXPORT extern NSString* const kUTTypePDF;           // "com.adobe.pdf"
PV_EXPORT extern NSString* const kUTTypeSpreadsheet;   // "public.spreadsheet"
PV_EXPORT extern NSString* const kUTTypePresentation;  // "public.presentation"

// Archives and other data.
PV_EXPORT extern NSString* const kUTTypeZipArchive;       // "public.zip-archive"
PV_EXPORT extern NSString* const kUTTypeGNUZipArchive;    // "org.gnu.gnu-zip-archive"
PV_EXPORT extern NSString* const kUTTypeBzip2Archive;     // "public.bzip2-archive"
PV_EXPORT extern NSString* const kUTTypeFont;             // "public.font"
PV_EXPORT extern NSString* const kUTTypePropertyList;     // "com.apple.property-list"
PV_EXPORT extern NSString* const kUTTypeX509Certificate;  // "public.x509-certificate"
