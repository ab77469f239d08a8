#ifndef TRESK_VALIDATOR_H
#define TRESK_VALIDATOR_H

#include <tresk/Inflater.h>
#include <tresk/MD5Generator.h>

#include <QByteArray>
#include <QObject>
#include <QString>

namespace tresk {

/// Checks a stream of stored bytes against the digests it should have, decoding it on the
/// way where it is compressed.
class TRESK_EXPORT Validator : public QObject {
    Q_OBJECT

public:
    /// Expects the MD5 digest @p md5 of the content and @p md5Compressed of the stored bytes,
    /// as 32 lowercase hexadecimal digits. An empty @p md5Compressed means that the content
    /// is stored as it is; an empty @p md5 fits no content.
    Validator(const QString& md5, const QString& md5Compressed);
    ~Validator() override;

    /// Starts over with other digests.
    void reinit(const QString& md5, const QString& md5Compressed);
    /// Feeds the next stored bytes, in order and without gaps.
    void update(const QByteArray& data);
    /// Whether what was fed so far has the expected digests and, if compressed, is one whole
    /// and sound zlib stream. Feeding more bytes afterwards has no effect on the digests.
    bool isValid();

private:
    QString m_md5;
    QString m_md5Compressed;
    bool m_compressed = false;
    MD5Generator m_contentDigest;
    MD5Generator m_storedDigest;
    Inflater m_inflater;
};

} // namespace tresk

#endif
