// Conformance follows the platform's own declarations: file formats conform
// to public.data (and so to public.item), kinds of content to public.content;
// the zip-based office formats conform to their container format.
#include "core_type_table.h"

#include <array>

namespace mobilecoreservices {

namespace {

constexpr std::array kTable = std::to_array<CoreTypeEntry>({
    // clang-format off
    // Roots and abstract kinds.
    {"public.item", "", "", "", "item"},
    {"public.content", "", "", "", "content"},
    {"public.composite-content", "public.content", "", "", "composite content"},
    {"public.data", "public.item", "", "application/octet-stream", "data"},
    {"public.directory", "public.item", "", "", "directory"},
    {"public.folder", "public.directory", "", "", "folder"},
    {"public.volume", "public.folder", "", "", "volume"},
    {"com.apple.package", "public.directory", "", "", "package"},
    {"com.apple.bundle", "public.directory", "", "", "bundle"},
    {"public.executable", "public.item", "", "", "executable"},
    {"public.symlink", "public.item", "", "", "symbolic link"},
    {"public.contact", "public.item", "", "", "contact"},
    {"public.calendar-event", "public.item", "", "", "calendar event"},
    {"public.url", "public.data", "", "", "URL"},
    {"public.file-url", "public.url", "", "", "file URL"},
    {"public.archive", "public.data", "", "", "archive"},
    {"public.disk-image", "public.archive", "", "", "disk image"},

    // Text.
    {"public.text", "public.data public.content", "", "", "text"},
    {"public.plain-text", "public.text", "txt text", "text/plain", "plain text document"},
    {"public.utf8-plain-text", "public.plain-text", "", "", "UTF-8 plain text"},
    {"public.utf16-external-plain-text", "public.plain-text", "", "", "UTF-16 plain text"},
    {"public.utf16-plain-text", "public.plain-text", "", "", "UTF-16 plain text (host order)"},
    {"public.delimited-values-text", "public.text", "", "", "delimited values text"},
    {"public.comma-separated-values-text", "public.delimited-values-text", "csv", "text/csv text/comma-separated-values", "comma-separated values"},
    {"public.tab-separated-values-text", "public.delimited-values-text", "tsv", "text/tab-separated-values", "tab-separated values"},
    {"public.rtf", "public.text", "rtf", "text/rtf application/rtf", "rich text document"},
    {"public.html", "public.text", "html htm", "text/html", "HTML document"},
    {"public.xml", "public.text", "xml", "application/xml text/xml", "XML document"},
    {"public.json", "public.text", "json", "application/json", "JSON document"},
    {"public.yaml", "public.text", "yaml yml", "application/yaml application/x-yaml", "YAML document"},
    {"net.daringfireball.markdown", "public.plain-text", "md markdown", "text/markdown", "Markdown document"},
    {"public.log", "public.plain-text", "log", "text/x-log", "log file"},
    {"public.source-code", "public.plain-text", "", "", "source code"},
    {"public.c-source", "public.source-code", "c", "text/x-csrc", "C source"},
    {"public.c-header", "public.source-code", "h", "text/x-chdr", "C header"},
    {"public.c-plus-plus-source", "public.source-code", "cpp cc cxx c++", "text/x-c++src", "C++ source"},
    {"public.c-plus-plus-header", "public.source-code", "hpp hh hxx", "text/x-c++hdr", "C++ header"},
    {"public.objective-c-source", "public.source-code", "m", "text/x-objcsrc", "Objective-C source"},
    {"public.swift-source", "public.source-code", "swift", "", "Swift source"},
    {"public.script", "public.source-code", "", "", "script"},
    {"public.shell-script", "public.script", "sh command", "application/x-shellscript", "shell script"},
    {"public.python-script", "public.script", "py", "text/x-python", "Python script"},
    {"com.netscape.javascript-source", "public.source-code public.executable", "js mjs", "text/javascript application/javascript", "JavaScript source"},
    {"public.vcard", "public.text public.contact", "vcf vcard", "text/vcard text/x-vcard", "vCard"},
    {"com.apple.ical.ics", "public.text public.calendar-event", "ics", "text/calendar", "iCalendar file"},

    // Images.
    {"public.image", "public.data public.content", "", "", "image"},
    {"public.jpeg", "public.image", "jpeg jpg jpe", "image/jpeg image/jpg", "JPEG image"},
    {"public.png", "public.image", "png", "image/png", "PNG image"},
    {"com.compuserve.gif", "public.image", "gif", "image/gif", "GIF image"},
    {"public.tiff", "public.image", "tiff tif", "image/tiff", "TIFF image"},
    {"com.microsoft.bmp", "public.image", "bmp", "image/bmp image/x-bmp", "Windows bitmap image"},
    {"com.microsoft.ico", "public.image", "ico", "image/vnd.microsoft.icon image/x-icon", "Windows icon image"},
    {"public.heif-standard", "public.image", "", "", "HEIF image"},
    {"public.heic", "public.heif-standard", "heic", "image/heic", "HEIC image"},
    {"public.heif", "public.heif-standard", "heif", "image/heif", "HEIF image"},
    {"org.webmproject.webp", "public.image", "webp", "image/webp", "WebP image"},
    {"public.svg-image", "public.image", "svg", "image/svg+xml", "SVG image"},
    {"public.jpeg-2000", "public.image", "jp2", "image/jp2", "JPEG 2000 image"},
    {"public.camera-raw-image", "public.image", "", "", "raw image"},
    {"com.adobe.photoshop-image", "public.image", "psd", "image/vnd.adobe.photoshop", "Photoshop image"},

    // Audio and video.
    {"public.audiovisual-content", "public.data public.content", "", "", "audiovisual content"},
    {"public.audio", "public.audiovisual-content", "", "", "audio"},
    {"public.movie", "public.audiovisual-content", "", "", "movie"},
    {"public.video", "public.movie", "", "", "video"},
    {"public.mp3", "public.audio", "mp3", "audio/mpeg audio/mp3", "MP3 audio"},
    {"public.mpeg-4", "public.movie", "mp4 mpeg4", "video/mp4", "MPEG-4 movie"},
    {"public.mpeg-4-audio", "public.mpeg-4 public.audio", "m4a", "audio/mp4 audio/x-m4a", "MPEG-4 audio"},
    {"public.aac-audio", "public.audio", "aac", "audio/aac", "AAC audio"},
    {"com.microsoft.waveform-audio", "public.audio", "wav wave", "audio/wav audio/x-wav audio/vnd.wave", "Waveform audio"},
    {"public.aiff-audio", "public.audio", "aiff aif", "audio/aiff audio/x-aiff", "AIFF audio"},
    {"com.apple.coreaudio-format", "public.audio", "caf", "audio/x-caf", "Core Audio file"},
    {"public.midi-audio", "public.audio", "mid midi", "audio/midi audio/x-midi", "MIDI audio"},
    {"org.xiph.ogg-audio", "public.audio", "oga ogg", "audio/ogg", "Ogg audio"},
    {"org.xiph.opus", "public.audio", "opus", "audio/opus", "Opus audio"},
    {"org.xiph.flac", "public.audio", "flac", "audio/flac audio/x-flac", "FLAC audio"},
    {"public.3gpp", "public.movie", "3gp 3gpp", "video/3gpp audio/3gpp", "3GPP movie"},
    {"com.apple.quicktime-movie", "public.movie", "mov qt", "video/quicktime", "QuickTime movie"},
    {"public.mpeg", "public.movie", "mpg mpeg", "video/mpeg", "MPEG movie"},
    {"public.avi", "public.movie", "avi", "video/x-msvideo video/avi", "AVI movie"},
    {"com.apple.m4v-video", "public.movie", "m4v", "video/x-m4v", "MPEG-4 video"},
    {"org.webmproject.webm", "public.movie", "webm", "video/webm", "WebM movie"},
    {"org.matroska.mkv", "public.movie", "mkv", "video/x-matroska", "Matroska movie"},

    // Documents.
    {"com.adobe.pdf", "public.data public.composite-content", "pdf", "application/pdf", "PDF document"},
    {"com.adobe.postscript", "public.data public.composite-content", "ps", "application/postscript", "PostScript document"},
    {"public.spreadsheet", "public.content", "", "", "spreadsheet"},
    {"public.presentation", "public.composite-content", "", "", "presentation"},
    {"com.microsoft.word.doc", "public.data public.composite-content", "doc", "application/msword", "Word document"},
    {"com.microsoft.excel.xls", "public.data public.spreadsheet", "xls", "application/vnd.ms-excel", "Excel spreadsheet"},
    {"com.microsoft.powerpoint.ppt", "public.data public.presentation", "ppt", "application/vnd.ms-powerpoint", "PowerPoint presentation"},
    {"org.openxmlformats.openxml", "public.zip-archive", "", "", "Office Open XML document"},
    {"org.openxmlformats.wordprocessingml.document", "org.openxmlformats.openxml public.composite-content", "docx", "application/vnd.openxmlformats-officedocument.wordprocessingml.document", "Word document"},
    {"org.openxmlformats.spreadsheetml.sheet", "org.openxmlformats.openxml public.spreadsheet", "xlsx", "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet", "Excel spreadsheet"},
    {"org.openxmlformats.presentationml.presentation", "org.openxmlformats.openxml public.presentation", "pptx", "application/vnd.openxmlformats-officedocument.presentationml.presentation", "PowerPoint presentation"},
    {"org.oasis-open.opendocument", "public.zip-archive", "", "", "OpenDocument file"},
    {"org.oasis-open.opendocument.text", "org.oasis-open.opendocument public.composite-content", "odt", "application/vnd.oasis.opendocument.text", "OpenDocument text"},
    {"org.oasis-open.opendocument.spreadsheet", "org.oasis-open.opendocument public.spreadsheet", "ods", "application/vnd.oasis.opendocument.spreadsheet", "OpenDocument spreadsheet"},
    {"org.oasis-open.opendocument.presentation", "org.oasis-open.opendocument public.presentation", "odp", "application/vnd.oasis.opendocument.presentation", "OpenDocument presentation"},
    {"org.idpf.epub-container", "public.zip-archive public.composite-content", "epub", "application/epub+zip", "EPUB book"},

    // Archives.
    {"public.zip-archive", "public.data public.archive", "zip", "application/zip application/x-zip-compressed", "ZIP archive"},
    {"org.gnu.gnu-zip-archive", "public.data public.archive", "gz gzip", "application/gzip application/x-gzip", "gzip archive"},
    {"org.gnu.gnu-zip-tar-archive", "org.gnu.gnu-zip-archive", "tgz tar.gz", "application/x-compressed-tar", "gzip tar archive"},
    {"public.tar-archive", "public.data public.archive", "tar", "application/x-tar", "tar archive"},
    {"public.bzip2-archive", "public.data public.archive", "bz2 bzip2", "application/x-bzip2 application/x-bzip", "bzip2 archive"},
    {"org.tukaani.xz-archive", "public.data public.archive", "xz", "application/x-xz", "xz archive"},
    {"org.7-zip.7-zip-archive", "public.data public.archive", "7z", "application/x-7z-compressed", "7-Zip archive"},
    {"com.rarlab.rar-archive", "public.data public.archive", "rar", "application/vnd.rar application/x-rar-compressed", "RAR archive"},
    {"public.iso-image", "public.disk-image", "iso", "application/x-cd-image application/x-iso9660-image", "ISO disk image"},

    // Other data.
    {"public.font", "public.data", "", "", "font"},
    {"public.truetype-ttf-font", "public.font", "ttf", "font/ttf", "TrueType font"},
    {"public.opentype-font", "public.font", "otf", "font/otf", "OpenType font"},
    {"com.apple.property-list", "public.data", "plist", "application/x-plist", "property list"},
    {"public.x509-certificate", "public.data", "cer crt der", "application/pkix-cert application/x-x509-ca-cert", "certificate"},
    // clang-format on
});

}  // namespace

std::span<const CoreTypeEntry> coreTypeTable() noexcept {
    return kTable;
}

}  // namespace mobilecoreservices
