#ifndef TRESK_MD5GENERATOR_H
#define TRESK_MD5GENERATOR_H

#include <tresk/Export.h>

#include <QByteArray>
#include <QCryptographicHash>
#include <QObject>
#include <QString>

namespace tresk {

/// Computes an MD5 digest (RFC 1321) of bytes that come in pieces.
class TRESK_EXPORT MD5Generator : public QObject {
    Q_OBJECT

public:
    MD5Generator();
    /// The same as a new generator that is fed @p data.
    explicit MD5Generator(const QByteArray& data);
    ~MD5Generator() override;

    /// Starts over.
    void reset();
    /// Feeds @p data.
    void update(const QByteArray& data);
    /// The digest of all bytes fed, as 32 lowercase hexadecimal digits. Once it has been
    /// asked for it stays the same until reset(), whatever is fed afterwards.
    QString getHexDigest();

private:
    QCryptographicHash m_hash;
    QString m_digest;
};

} // namespace tresk

#endif
