#ifndef TRESK_TESTS_ARGFILEFIELDS_H
#define TRESK_TESTS_ARGFILEFIELDS_H

#include <tresk/ArgFile.h>

#include <QString>

#include <array>

namespace tresktest {

/// A value of @p Owner by its name, with what reads and what sets it.
template <typename Owner, typename Value, typename Argument>
struct Field {
    const char* name;
    Value (Owner::*get)() const;
    void (Owner::*set)(Argument);
};

using TextField = Field<tresk::ArgFile, QString, const QString&>;
using FlagField = Field<tresk::ArgFile, bool, bool>;
using FileTextField = Field<tresk::WSFile, QString, const QString&>;
using FileFlagField = Field<tresk::WSFile, bool, bool>;

// All of them but lists, user attributes and enumerations, each in the order in which it is
// written to a command line.

inline constexpr std::array<TextField, 17> textFields = {{
    {"firstpage", &tresk::ArgFile::firstpage, &tresk::ArgFile::setFirstpage},
    {"readme", &tresk::ArgFile::readme, &tresk::ArgFile::setReadme},
    {"rootfile", &tresk::ArgFile::rootfile, &tresk::ArgFile::setRootfile},
    {"title", &tresk::ArgFile::title, &tresk::ArgFile::setTitle},
    {"description", &tresk::ArgFile::description, &tresk::ArgFile::setDescription},
    {"comment", &tresk::ArgFile::comment, &tresk::ArgFile::setComment},
    {"tool", &tresk::ArgFile::tool, &tresk::ArgFile::setTool},
    {"toolpath", &tresk::ArgFile::toolpath, &tresk::ArgFile::setToolpath},
    {"host", &tresk::ArgFile::host, &tresk::ArgFile::setHost},
    {"user", &tresk::ArgFile::user, &tresk::ArgFile::setUser},
    {"command", &tresk::ArgFile::command, &tresk::ArgFile::setCommand},
    {"pdfTitle", &tresk::ArgFile::pdfTitle, &tresk::ArgFile::setPdfTitle},
    {"pdfProducer", &tresk::ArgFile::pdfProducer, &tresk::ArgFile::setPdfProducer},
    {"pdfCreator", &tresk::ArgFile::pdfCreator, &tresk::ArgFile::setPdfCreator},
    {"pdfAuthor", &tresk::ArgFile::pdfAuthor, &tresk::ArgFile::setPdfAuthor},
    {"pdfKeywords", &tresk::ArgFile::pdfKeywords, &tresk::ArgFile::setPdfKeywords},
    {"pdfSubject", &tresk::ArgFile::pdfSubject, &tresk::ArgFile::setPdfSubject},
}};

inline constexpr std::array<FlagField, 5> flagFields = {{
    {"pretend", &tresk::ArgFile::pretend, &tresk::ArgFile::setPretend},
    {"debugMode", &tresk::ArgFile::debugMode, &tresk::ArgFile::setDebugMode},
    {"showHelp", &tresk::ArgFile::showHelp, &tresk::ArgFile::setShowHelp},
    {"showVersion", &tresk::ArgFile::showVersion, &tresk::ArgFile::setShowVersion},
    {"rootIsOptional", &tresk::ArgFile::rootIsOptional, &tresk::ArgFile::setRootIsOptional},
}};

/// Without the directory, which setFilepath() does not take as it is.
inline constexpr std::array<FileTextField, 4> fileTextFields = {{
    {"filetype", &tresk::WSFile::filetype, &tresk::WSFile::setFiletype},
    {"description", &tresk::WSFile::description, &tresk::WSFile::setDescription},
    {"comment", &tresk::WSFile::comment, &tresk::WSFile::setComment},
    {"md5file", &tresk::WSFile::md5File, &tresk::WSFile::setMD5File},
}};

/// Their names are also the words that options set them with.
inline constexpr std::array<FileFlagField, 8> fileFlagFields = {{
    {"optional", &tresk::WSFile::optional, &tresk::WSFile::setOptional},
    {"compress", &tresk::WSFile::compress, &tresk::WSFile::setCompress},
    {"embed", &tresk::WSFile::embed, &tresk::WSFile::setEmbed},
    {"automd5", &tresk::WSFile::autoMD5, &tresk::WSFile::setAutoMD5},
    {"previewws", &tresk::WSFile::previewWS, &tresk::WSFile::setPreviewWS},
    {"preview", &tresk::WSFile::preview, &tresk::WSFile::setPreview},
    {"thumbnail", &tresk::WSFile::thumbnail, &tresk::WSFile::setThumbnail},
    {"thumbnailonly", &tresk::WSFile::thumbnailOnly, &tresk::WSFile::setThumbnailOnly},
}};

} // namespace tresktest

#endif
