#ifndef TRESK_TESTS_SPLITMODEL_H
#define TRESK_TESTS_SPLITMODEL_H

#include <QString>
#include <QStringList>

namespace tresktest {

/// What becomes of a tool's output, by splitting all of what is left anew with each piece. The
/// real runner is compared with it.
class SplitModel {
public:
    void process(const QString& text, bool flush);

    QString rest;
    QStringList lines; ///< each as its type, a blank and the text

private:
    void addLine(const QString& line);
};

} // namespace tresktest

#endif
