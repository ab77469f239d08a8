#include "FileWalk.h"

#include "SystemText.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace tresk::cli {

namespace {

namespace fs = std::filesystem;

std::string native(const QByteArray& path)
{
    return path.toStdString();
}

} // namespace

FileWalk::FileWalk(const QStringList& paths, FailureHandler handleFailure)
    : m_handleFailure(std::move(handleFailure))
{
    for (auto path = paths.crbegin(); path != paths.crend(); ++path) {
        const QByteArray bytes = toSystem(*path);
        std::error_code error;
        m_places.push_back({bytes, true, fs::is_directory(native(bytes), error)});
    }
}

std::optional<QString> FileWalk::next()
{
    while (!m_places.empty()) {
        const Place place = m_places.back();
        m_places.pop_back();
        if (place.isDirectory) {
            enter(place.path);
            continue;
        }
        m_isNamed = place.isNamed;
        return fromSystem(place.path);
    }
    return std::nullopt;
}

void FileWalk::enter(const QByteArray& directory)
{
    const std::size_t first = m_places.size();
    const QByteArray prefix = directory.endsWith('/') ? directory : directory + '/';
    std::error_code error;
    fs::directory_iterator entry(native(directory), error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        std::error_code unknown;
        const fs::file_type type = entry->symlink_status(unknown).type();
        // What has gone meanwhile is left out; why a type is not told, opening the file shows.
        const bool isFile = type == fs::file_type::regular || type == fs::file_type::none;
        if (!isFile && type != fs::file_type::directory)
            continue;
        const QByteArray name = QByteArray::fromStdString(entry->path().filename().native());
        m_places.push_back({prefix + name, false, !isFile});
    }
    if (error)
        m_handleFailure(fromSystem(directory), systemError(error.value()));
    const auto key = [](const Place& place) {
        return place.isDirectory ? place.path + '/' : place.path;
    };
    std::sort(m_places.begin() + std::ptrdiff_t(first), m_places.end(),
              [&key](const Place& a, const Place& b) { return key(b) < key(a); });
}

} // namespace tresk::cli
