// Takes any bytes for the output of a tool, which arrives in pieces: a number of pieces, the length
// of each and the output. In these numbers, digits stand for themselves.

#include "ByteSource.h"
#include "FuzzTarget.h"
#include "SplitModel.h"

#include <tresk/TreskRunner.h>

#include "args/StreamDecoder.h"

#include <vector>

using tresktest::SplitModel;

namespace {

constexpr int longestOutput = 4096;

/// A runner that runs nothing, with what it logs.
class Runner : public tresk::TreskRunner {
public:
    Runner()
        : TreskRunner(QStringLiteral("tool"), nullptr)
    {
        connect(this, &TreskRunner::log, this, [this](const QString& text, int type) {
            lines += QString::number(type) + QLatin1Char(' ') + text;
        });
    }

    int runProcess(const QString&) override { return 0; }

    QStringList lines;
};

/// What is relayed of output that comes in @p pieces, and as a model has it.
QStringList relayed(const std::vector<QByteArray>& pieces)
{
    Runner runner;
    SplitModel model;
    tresk::StreamDecoder decoder;
    const auto process = [&](const QString& text, bool flush) {
        runner.processOutput(text, flush);
        model.process(text, flush);
    };
    QByteArray whole;
    QString decoded;
    for (const QByteArray& piece : pieces) {
        whole += piece;
        const QString text = decoder.decode(piece);
        decoded += text;
        process(text, false);
    }
    const QString last = decoder.decodeLast(QByteArray());
    process(last, true);
    TRESK_REQUIRE(decoded + last == QString::fromUtf8(whole.constData(), int(whole.size())));
    TRESK_REQUIRE(runner.lines == model.lines);
    return runner.lines;
}

void runLines(const QByteArray& input)
{
    tresk_fuzz::ByteSource source(input);
    std::vector<int> lengths(std::size_t(source.below('0')));
    for (int& length : lengths)
        length = source.below('0');
    QByteArray rest = source.rest().left(longestOutput);

    std::vector<QByteArray> pieces;
    QByteArray joined; // such that in one piece it has the same lines
    const auto add = [&](const QByteArray& piece) {
        // Each half of a line break that is cut is one.
        if (joined.endsWith('\r') && piece.startsWith('\n'))
            joined += '\r';
        joined += piece;
        pieces.push_back(piece);
    };
    for (const int length : lengths) {
        add(rest.left(length));
        rest.remove(0, length);
    }
    add(rest);
    TRESK_REQUIRE(relayed(pieces) == relayed({joined}));
}

const tresk_fuzz::Target target("lines", runLines);

} // namespace
