#ifndef TRESK_ARGFILE_H
#define TRESK_ARGFILE_H

#include <tresk/Export.h>

#include <QHash>
#include <QString>
#include <QStringList>

#include <vector>

namespace tresk {

/// Free attributes, each a name with a value, in the order in which they were added.
class TRESK_EXPORT UserAttributes {
public:
    /// Appends @p key to the keys, also when it is among them, and sets its value; a later value
    /// replaces an earlier one.
    void addUserAttribute(const QString& key, const QString& value);
    /// The value of @p key; empty if there is no such attribute.
    QString userAttribute(const QString& key) const { return m_values.value(key); }
    /// The keys in the order in which they were added; one that was added twice stands here twice.
    QStringList userAttributeKeys() const { return m_keys; }
    /// Removes all attributes.
    void clearUserAttributes();

protected:
    /// @{
    /// For the classes that have attributes: there are none by themselves.
    UserAttributes() = default;
    UserAttributes(const UserAttributes&) = default;
    UserAttributes& operator=(const UserAttributes&) = default;
    ~UserAttributes() = default;
    /// @}

    /// Whether @p other has the same values and the same keys in the same order.
    bool hasSameAttributes(const UserAttributes& other) const;
    /// Appends @p option, the key and the value of each attribute that is not empty to @p list.
    void appendAttributesToList(const QString& option, QStringList& list) const;

private:
    QHash<QString, QString> m_values;
    QStringList m_keys;
};

/// A file that a workflow step used or produced, and what is to be done with it. A value.
class TRESK_EXPORT WSFile : public UserAttributes {
public:
    /// Whether the step has read the file or written it.
    enum FilePurpose { Input = 0, Output = 1 };

    /// @{
    /// Compares all fields and attributes, the order of the attributes' keys included.
    bool operator==(const WSFile& other) const;
    bool operator!=(const WSFile& other) const { return !(*this == other); }
    /// @}

    /// The full path: directory and name.
    QString filename() const { return m_filepath + m_filename; }
    /// Sets the name alone, without the directory.
    void setFilename(const QString& name) { m_filename = name; }
    /// The directory: it ends in "/" once it was set, and is empty before.
    QString filepath() const { return m_filepath; }
    /// Sets the directory; "/" is appended unless it stands at the end already. So an empty @p path
    /// becomes "/".
    void setFilepath(const QString& path);
    /// Sets directory and name from @p path; the directory of a bare name is "./".
    void setFilenameAndPath(const QString& path);

    /// @{
    /// Empty unless set: a free label for the kind of file (filetype), the path of a file that
    /// holds its checksum (md5File), a description and a comment.
    QString filetype() const { return m_filetype; }
    void setFiletype(const QString& type) { m_filetype = type; }
    QString md5File() const { return m_md5File; }
    void setMD5File(const QString& path) { m_md5File = path; }
    QString description() const { return m_description; }
    void setDescription(const QString& text) { m_description = text; }
    QString comment() const { return m_comment; }
    void setComment(const QString& text) { m_comment = text; }
    /// @}

    /// @{
    /// What the tool does with the file, each on or off. On by themselves: the checksum is computed
    /// (autoMD5), and the document holds the content (embed). Off: it is no error if the file is
    /// missing (optional), the content is compressed (compress), the file is a preview of the
    /// document (preview) or of the step (previewWS), a thumbnail (thumbnail), or nothing but a
    /// thumbnail (thumbnailOnly).
    bool autoMD5() const { return m_autoMD5; }
    void setAutoMD5(bool on) { m_autoMD5 = on; }
    bool embed() const { return m_embed; }
    void setEmbed(bool on) { m_embed = on; }
    bool optional() const { return m_optional; }
    void setOptional(bool on) { m_optional = on; }
    bool compress() const { return m_compress; }
    void setCompress(bool on) { m_compress = on; }
    bool preview() const { return m_preview; }
    void setPreview(bool on) { m_preview = on; }
    bool previewWS() const { return m_previewWS; }
    void setPreviewWS(bool on) { m_previewWS = on; }
    bool thumbnail() const { return m_thumbnail; }
    void setThumbnail(bool on) { m_thumbnail = on; }
    bool thumbnailOnly() const { return m_thumbnailOnly; }
    void setThumbnailOnly(bool on) { m_thumbnailOnly = on; }
    /// @}

    /// @{
    /// Whether the step has read the file, as it has by default, or written it.
    FilePurpose filePurpose() const { return m_filePurpose; }
    void setFilePurpose(const FilePurpose& purpose) { m_filePurpose = purpose; }
    bool inputFile() const { return m_filePurpose == Input; }
    void setInputFile(bool input) { m_filePurpose = input ? Input : Output; }
    /// @}

    /// The options that describe this file, quoted by quoteStringList() and separated by blanks:
    /// purpose and path, the texts that are not empty, all eight flags, the attributes whose values
    /// are not empty. @p expandVariables is that of quoteString().
    QString toCommandline(bool expandVariables) const;

private:
    QString m_filetype;
    QString m_filename;
    QString m_filepath;
    QString m_md5File;
    bool m_autoMD5 = true;
    bool m_embed = true;
    bool m_optional = false;
    bool m_compress = false;
    bool m_previewWS = false;
    bool m_preview = false;
    bool m_thumbnail = false;
    bool m_thumbnailOnly = false;
    FilePurpose m_filePurpose = Input;
    QString m_description;
    QString m_comment;
};

/// Everything that one run of the tool `treskadd` is told. A value; texts are empty by default.
class TRESK_EXPORT ArgFile : public UserAttributes {
public:
    /// How much the tool says.
    enum Verbosity { Quiet = 0, Normal = 1, Verbose = 2 };

    /// Says nothing: the tool's command line is empty.
    ArgFile() = default;
    /// A step that works on @p rootfile and writes @p outputTreskfile.
    ArgFile(const QString& outputTreskfile, const QString& rootfile);

    /// @{
    /// The path of the document that the step works on.
    QString rootfile() const { return m_rootfile; }
    void setRootfile(const QString& path) { m_rootfile = path; }
    /// @}

    /// @{
    /// What the step says of itself, free texts: which program ran (tool), where it lies
    /// (toolpath), on which host, by which user and with which command line.
    QString title() const { return m_title; }
    void setTitle(const QString& text) { m_title = text; }
    QString description() const { return m_description; }
    void setDescription(const QString& text) { m_description = text; }
    QString comment() const { return m_comment; }
    void setComment(const QString& text) { m_comment = text; }
    QString tool() const { return m_tool; }
    void setTool(const QString& name) { m_tool = name; }
    QString toolpath() const { return m_toolpath; }
    void setToolpath(const QString& path) { m_toolpath = path; }
    QString host() const { return m_host; }
    void setHost(const QString& name) { m_host = name; }
    QString user() const { return m_user; }
    void setUser(const QString& name) { m_user = name; }
    QString command() const { return m_command; }
    void setCommand(const QString& commandline) { m_command = commandline; }
    /// @}

    /// @{
    /// The paths of a file to be put in front as the document's first page, and of a read-me text
    /// file.
    QString firstpage() const { return m_firstpage; }
    void setFirstpage(const QString& path) { m_firstpage = path; }
    QString readme() const { return m_readme; }
    void setReadme(const QString& path) { m_readme = path; }
    /// @}

    /// @{
    /// Metadata of a PDF document: the entries of its document information dictionary, free texts.
    QString pdfTitle() const { return m_pdfTitle; }
    void setPdfTitle(const QString& text) { m_pdfTitle = text; }
    QString pdfProducer() const { return m_pdfProducer; }
    void setPdfProducer(const QString& text) { m_pdfProducer = text; }
    QString pdfCreator() const { return m_pdfCreator; }
    void setPdfCreator(const QString& text) { m_pdfCreator = text; }
    QString pdfAuthor() const { return m_pdfAuthor; }
    void setPdfAuthor(const QString& text) { m_pdfAuthor = text; }
    QString pdfKeywords() const { return m_pdfKeywords; }
    void setPdfKeywords(const QString& text) { m_pdfKeywords = text; }
    QString pdfSubject() const { return m_pdfSubject; }
    void setPdfSubject(const QString& text) { m_pdfSubject = text; }
    /// @}

    /// @{
    /// What the run is like. Off by themselves: the tool only shows what it would do (pretend),
    /// says what helps to find faults (debugMode), shows its help text (showHelp) or its version
    /// (showVersion), takes it for no error that the root file is missing (rootIsOptional). The
    /// verbosity is Normal.
    bool pretend() const { return m_pretend; }
    void setPretend(bool on) { m_pretend = on; }
    bool debugMode() const { return m_debugMode; }
    void setDebugMode(bool on) { m_debugMode = on; }
    bool showHelp() const { return m_showHelp; }
    void setShowHelp(bool on) { m_showHelp = on; }
    bool showVersion() const { return m_showVersion; }
    void setShowVersion(bool on) { m_showVersion = on; }
    bool rootIsOptional() const { return m_rootIsOptional; }
    void setRootIsOptional(bool on) { m_rootIsOptional = on; }
    Verbosity verbosity() const { return m_verbosity; }
    void setVerbosity(Verbosity verbosity) { m_verbosity = verbosity; }
    /// @}

    /// Resets verbosity, flags and all texts but the root file, which stays, as do the lists and
    /// the user attributes.
    void clearVariables();
    /// Empties the root file alone.
    void clearRootTreskfiles() { m_rootfile.clear(); }

    /// @{
    /// The paths of the documents to write, counted from 0 in the order in which they were added.
    void addOutputTreskfile(const QString& path) { m_outputTreskfiles.append(path); }
    /// The path of the @p i th; empty if there is none.
    QString outputTreskfile(int i) const { return m_outputTreskfiles.value(i); }
    int numOutputTreskfiles() const { return int(m_outputTreskfiles.size()); }
    void clearOutputTreskfiles() { m_outputTreskfiles.clear(); }
    /// @}

    // The files that the step used or produced.
    /// Appends a copy of @p file, owned by this object. The pointer to it is valid until the list
    /// changes.
    WSFile* addFile(const WSFile& file);
    /// The @p i th file, valid until the list changes; null if there is none.
    WSFile* getFile(int i);
    /// Likewise the last file.
    WSFile* lastFile();
    /// A copy of the @p i th file; a default one if there is none.
    WSFile getConstFile(int i) const;
    /// Does nothing if there is no @p i th file.
    void removeFile(int i);
    /// The files are counted from 0, in the order in which they were added.
    int numFiles() const { return int(m_files.size()); }
    /// Removes all files.
    void clearFilelist() { m_files.clear(); }

    /// These options as one line of words for `treskadd`, each quoted by quoteString() and
    /// separated by blanks: verbosity and switches, first page, read-me file, output documents,
    /// root file, the step, PDF metadata, user attributes, then each file with its options. What
    /// is empty is not written; a line of files alone begins with a blank. @p expandVariables is
    /// that of quoteString().
    ///
    /// ArgfileReader does not accept all of it: first page and read-me file are written with their
    /// long options, which it does not know.
    QString toCommandline(bool expandVariables) const;
    /// The request that has `treskdel` take this step out of its output documents again; empty if
    /// there are none. The paths stand in it as they are, not escaped.
    QString getUndoWorkflowStep() const;

private:
    QStringList words() const;

    bool hasFile(int i) const { return i >= 0 && i < numFiles(); }

    // No QList: a pointer into one that shares with a copy would reach both.
    std::vector<WSFile> m_files;
    QStringList m_outputTreskfiles;
    Verbosity m_verbosity = Normal;
    bool m_rootIsOptional = false;
    bool m_pretend = false;
    bool m_debugMode = false;
    bool m_showHelp = false;
    bool m_showVersion = false;
    QString m_firstpage;
    QString m_readme;
    QString m_rootfile;
    QString m_title;
    QString m_description;
    QString m_comment;
    QString m_tool;
    QString m_toolpath;
    QString m_host;
    QString m_user;
    QString m_command;
    QString m_pdfTitle;
    QString m_pdfProducer;
    QString m_pdfCreator;
    QString m_pdfAuthor;
    QString m_pdfKeywords;
    QString m_pdfSubject;
};

/// Appends @p option, @p key and @p value to @p list, or nothing if @p value is empty.
TRESK_EXPORT void appendAttributeToList(const QString& value, const QString& option,
                                        const QString& key, QStringList& list);
/// Appends @p option and @p flag to @p list; "no-" stands before the flag if it is not @p on.
TRESK_EXPORT void appendFlagToList(bool on, const QString& option, const QString& flag,
                                   QStringList& list);

/// Quotes @p s as one word for a POSIX shell: a backslash before backslashes, double quotes and
/// backquotes, double quotes around it if it holds a blank, tab or line break.
///
/// With @p expandVariables, single dollar signs are left for the shell to expand and "$$" is a
/// dollar sign that stands for itself; otherwise every dollar sign stands for itself. An empty
/// word stays empty, and what is quoted by no backslash or blank, such as "#", "'" or ";", is not
/// quoted at all.
TRESK_EXPORT QString quoteString(const QString& s, bool expandVariables);
/// quoteString() of each of @p list.
TRESK_EXPORT QStringList quoteStringList(const QStringList& list, bool expandVariables);

} // namespace tresk

#endif
