#include <tresk/MD5Generator.h>

namespace tresk {

MD5Generator::MD5Generator()
    : m_hash(QCryptographicHash::Md5)
{
}

MD5Generator::MD5Generator(const QByteArray& data)
    : MD5Generator()
{
    update(data);
}

MD5Generator::~MD5Generator() = default;

void MD5Generator::reset()
{
    m_hash.reset();
    m_digest.clear();
}

void MD5Generator::update(const QByteArray& data)
{
    m_hash.addData(data);
}

QString MD5Generator::getHexDigest()
{
    if (m_digest.isEmpty())
        m_digest = QString::fromLatin1(m_hash.result().toHex());
    return m_digest;
}

} // namespace tresk
