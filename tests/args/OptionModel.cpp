#include "OptionModel.h"

#include <QHash>

using tresk::ArgFile;
using tresk::WSFile;

namespace tresktest {

namespace {

const QHash<QString, int>& parameterCounts()
{
    static const QHash<QString, int> counts = [] {
        const QStringList names[] = {
            text("--debug --stdin --verbose -v --quiet -q --pretend -p --sync-cwd --version -V "
                 "--help -h")
                .split(QLatin1Char(' ')),
            text("-c -1 -r --file-flag -f --append-to-treskfile -A -O -J -I --outfile -o --infile "
                 "-i")
                .split(QLatin1Char(' ')),
            text("--file-user -u --file-attr -a --step-user -U --step -s --doc -d")
                .split(QLatin1Char(' '))};
        QHash<QString, int> result;
        for (int count = 0; count < 3; ++count) {
            for (const QString& name : names[count])
                result.insert(name, count);
        }
        return result;
    }();
    return counts;
}

class Walk {
public:
    explicit Walk(const QStringList& arguments)
        : m_arguments(arguments)
    {
    }

    ReadOptions read()
    {
        m_arguments = checked();
        while (m_index < m_arguments.size()) {
            if (!apply(m_arguments.at(m_index)))
                break;
        }
        return m_read;
    }

private:
    void say(int type, const QString& message)
    {
        m_read.messages += QString::number(type) + QLatin1Char(' ') + message;
    }

    void missing(const QString& option)
    {
        say(2, text("not enough parameters for option: ") + option);
    }

    QStringList checked()
    {
        QStringList passed;
        for (int i = 0; i < m_arguments.size();) {
            const QString option = m_arguments.at(i);
            if (!parameterCounts().contains(option)) {
                say(2, text("unknown option found: ") + option);
                break;
            }
            const int count = parameterCounts().value(option);
            if (i + count >= m_arguments.size()) {
                missing(option);
                break;
            }
            passed += m_arguments.mid(i, count + 1);
            i += count + 1;
        }
        return passed;
    }

    /// Applies the option at the index and goes behind it. False where its parameters are missing,
    /// as they can be behind "-c".
    bool apply(const QString& option)
    {
        // Unlike the check, this knows the long forms.
        const bool isLong = is("--firstpage") || is("--readme");
        const bool isInvalid = is("-c") || is("--sync-cwd");
        if (isInvalid || !(isLong || parameterCounts().contains(option))) {
            say(0, text("invalid option (") + option + text(") found"));
            ++m_index;
            return true;
        }
        const int count = isLong ? 1 : parameterCounts().value(option);
        if (m_index + count >= m_arguments.size()) {
            missing(option);
            return false;
        }
        if (count == 0)
            applyFlag();
        else if (count == 1)
            applyParameter(option, m_arguments.at(m_index + 1));
        else
            applyPair(option, m_arguments.at(m_index + 1), m_arguments.at(m_index + 2));
        m_index += count + 1;
        return true;
    }

    bool is(const char* option) const { return m_arguments.at(m_index) == QLatin1String(option); }

    void applyFlag()
    {
        ArgFile& options = m_read.options;
        if (is("--debug"))
            options.setDebugMode(true);
        else if (is("--verbose") || is("-v"))
            options.setVerbosity(ArgFile::Verbose);
        else if (is("--quiet") || is("-q"))
            options.setVerbosity(ArgFile::Quiet);
        else if (is("--pretend") || is("-p"))
            options.setPretend(true);
        else if (is("--version") || is("-V"))
            options.setShowVersion(true);
        else if (is("--help") || is("-h"))
            options.setShowHelp(true);
    }

    void applyParameter(const QString& option, const QString& value)
    {
        ArgFile& options = m_read.options;
        const bool appends = is("--append-to-treskfile") || is("-A");
        if (is("--firstpage") || is("-1"))
            options.setFirstpage(value);
        else if (is("--readme") || is("-r"))
            options.setReadme(value);
        if (appends || is("-O"))
            options.addOutputTreskfile(value);
        if (appends || is("-J") || is("-I")) {
            options.setRootfile(value);
            options.setRootIsOptional(!is("-I"));
        }
        const bool isInput = is("--infile") || is("-i");
        if (isInput || is("--outfile") || is("-o")) {
            WSFile file;
            file.setFilePurpose(isInput ? WSFile::Input : WSFile::Output);
            file.setFilenameAndPath(value);
            options.addFile(file);
        } else if ((is("--file-flag") || is("-f")) && options.lastFile()) {
            setFlag(option, value, *options.lastFile());
        }
    }

    void setFlag(const QString& option, QString word, WSFile& file)
    {
        const bool on = !word.startsWith(QLatin1String("no-"));
        if (!on)
            word = word.mid(3);
        if (word == QLatin1String("optional"))
            file.setOptional(on);
        if (word == QLatin1String("compress"))
            file.setCompress(on);
        if (word == QLatin1String("thumbnailonly"))
            file.setThumbnailOnly(on);
        if (word == QLatin1String("previewws"))
            file.setPreviewWS(on);
        if (word == QLatin1String("embed"))
            file.setEmbed(on);
        if (word == QLatin1String("preview"))
            file.setPreview(on);
        if (word == QLatin1String("automd5"))
            file.setAutoMD5(on);
        if (word == QLatin1String("thumbnail"))
            file.setThumbnail(on);
        else
            say(2,
                text(on ? "\"1\"" : "\"0\"") + text(" is no valid parameter for option ") + option);
    }

    void applyPair(const QString& option, const QString& key, const QString& value)
    {
        ArgFile& options = m_read.options;
        WSFile* const file = options.lastFile();
        bool isKnown = true;
        if (is("--doc") || is("-d"))
            isKnown = setDocument(key, value, options);
        else if (is("--step") || is("-s"))
            isKnown = setStep(key, value, options);
        else if (is("--step-user") || is("-U"))
            options.addUserAttribute(key, value);
        else if (file && (is("--file-user") || is("-u")))
            file->addUserAttribute(key, value);
        else if (file)
            isKnown = setFile(key, value, *file);
        if (!isKnown)
            say(2,
                text("first parameter (") + value + text(") of option ") + option
                    + text(" is invalid"));
    }

    static bool setDocument(const QString& key, const QString& value, ArgFile& options)
    {
        if (key == QLatin1String("producer"))
            options.setPdfProducer(value);
        else if (key == QLatin1String("creator"))
            options.setPdfCreator(value);
        else if (key == QLatin1String("author"))
            options.setPdfAuthor(value);
        else if (key == QLatin1String("keywords"))
            options.setPdfKeywords(value);
        else if (key == QLatin1String("title"))
            options.setPdfTitle(value);
        else if (key == QLatin1String("subject"))
            options.setPdfSubject(value);
        else
            return false;
        return true;
    }

    static bool setStep(const QString& key, const QString& value, ArgFile& options)
    {
        if (key == QLatin1String("comment"))
            options.setComment(value);
        else if (key == QLatin1String("description"))
            options.setDescription(value);
        else if (key == QLatin1String("title"))
            options.setTitle(value);
        else if (key == QLatin1String("tool") || key == QLatin1String("toolversion"))
            options.setTool(value);
        else if (key == QLatin1String("toolpath"))
            options.setToolpath(value);
        else if (key == QLatin1String("host"))
            options.setHost(value);
        else if (key == QLatin1String("command"))
            options.setCommand(value);
        else if (key == QLatin1String("user"))
            options.setUser(value);
        else
            return false;
        return true;
    }

    static bool setFile(const QString& key, const QString& value, WSFile& file)
    {
        if (key == QLatin1String("comment"))
            file.setComment(value);
        else if (key == QLatin1String("md5file"))
            file.setMD5File(value);
        else if (key == QLatin1String("filetype"))
            file.setFiletype(value);
        else if (key == QLatin1String("description"))
            file.setDescription(value);
        else
            return false;
        return true;
    }

    QStringList m_arguments;
    int m_index = 0;
    ReadOptions m_read;
};

} // namespace

ReadOptions modelOptions(const QStringList& arguments)
{
    return Walk(arguments).read();
}

} // namespace tresktest
