#ifndef TRESK_APPS_FILEWALK_H
#define TRESK_APPS_FILEWALK_H

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>
#include <vector>

namespace tresk::cli {

/// Goes through files and, to any depth, through directories, one file after the other. The
/// files in a directory and below it come sorted by the bytes of their paths. Inside of
/// directories only regular files count, and symbolic links are not followed.
class FileWalk {
public:
    /// Is told of a directory that cannot be read, and why.
    using FailureHandler = std::function<void(const QString& directory, const QString& problem)>;

    /// Over @p paths in this order.
    FileWalk(const QStringList& paths, FailureHandler handleFailure);

    /// Goes on to the next file; nothing where there is none.
    std::optional<QString> next();

    /// Whether the file is one of the paths themselves.
    bool isNamed() const { return m_isNamed; }

private:
    struct Place {
        QByteArray path;
        bool isNamed;
        bool isDirectory;
    };

    void enter(const QByteArray& directory);

    FailureHandler m_handleFailure;
    std::vector<Place> m_places; ///< that are to be gone through, the next one last
    bool m_isNamed = false;
};

} // namespace tresk::cli

#endif
