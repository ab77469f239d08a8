#ifndef TRESK_SUMMARY_ELEMENTSCANNER_H
#define TRESK_SUMMARY_ELEMENTSCANNER_H

#include <QString>
#include <QStringView>

namespace tresk {

/// Walks the elements at the top level of a text, one after the other.
///
/// A small and strict part of XML. The name of an element is all that stands between "<" and
/// ">", so there are no attributes. Text, comments and processing instructions between elements
/// are passed over. Anything malformed ends the walk for good.
///
/// Names and contents are views of the text, which has to outlive them. The whole walk takes
/// time linear in the length of the text.
class ElementScanner {
public:
    /// Stands on the first element of @p text, if it has one.
    explicit ElementScanner(QStringView text);

    /// Whether there is a current element.
    bool isValid() const { return m_valid; }
    /// The name of the current element; null without one.
    QStringView name() const { return m_name; }
    /// Whether the current element is called @p name.
    bool nameIs(QStringView name) const { return m_name == name; }
    /// The content of the current element as it stands; empty, not null, where there is none;
    /// null without a current element.
    QStringView content() const { return m_content; }

    /// Goes on to the next element and returns its content; null where there is none.
    QStringView next();

private:
    bool readTag();
    bool readContent();
    bool passDeclaration(QStringView end);

    QStringView m_text;
    qsizetype m_pos = 0;
    QStringView m_name;
    QStringView m_content;
    bool m_valid = true;
};

} // namespace tresk

#endif
