#include "Samples.h"

namespace samples {

namespace {

Step trial(const Workshop& workshop)
{
    Step step;
    step.rootFile = "housing-drawing.pdf"_s;
    step.folder = "/home/asato/housing"_s;
    step.timestamp = "2024-02-08 16:21:30"_s;
    step.title = "Plan the trial"_s;
    step.tool = "trialplan"_s;
    step.toolPath = "/opt/rig/bin/trialplan"_s;
    step.command = "trialplan trial-017.ini"_s;
    step.host = "ws12.office.example.org"_s;
    step.user = "asato"_s;
    step.files = {workshop.stepFile("sources/trial-017.ini"_s, Purpose::Output, Storage::Plain)};
    return step;
}

Step drawing(const Workshop& workshop)
{
    Step step = trial(workshop);
    step.timestamp = "2024-02-12 09:30:01"_s;
    step.title = "Draw the housing"_s;
    step.tool = "ps2pdf"_s;
    step.toolPath = "/usr/bin/ps2pdf"_s;
    step.command = "ps2pdf housing-drawing.ps housing-drawing.pdf"_s;
    step.files = {
        workshop.stepFile("sources/housing-drawing.ps"_s, Purpose::Input, Storage::Compressed)};
    return step;
}

Step labelling(const Workshop& workshop)
{
    Step step = trial(workshop);
    step.timestamp = "2024-03-06 08:20:40"_s;
    step.title = "Label the drawing"_s;
    step.tool = "label"_s;
    step.toolPath = "/opt/drawings/bin/label"_s;
    step.command = "label housing-drawing.pdf label.svg"_s;
    step.user = "mvinter"_s;
    step.files = {workshop.stepFile("sources/label.svg"_s, Purpose::Input, Storage::Plain)};
    return step;
}

/// Raises the load in a file that is stored plain.
void changeSettings(QByteArray& bytes, const tresktest::WrittenFile& settings)
{
    const auto load = bytes.indexOf("2400", settings.dataStart);
    bytes.replace(load, 4, "2900");
}

/// Loses a stretch in the middle of a compressed file, as a bad sector does.
void loseStretch(QByteArray& bytes, const tresktest::WrittenFile& file)
{
    const auto length = file.stored.size() / 4;
    bytes.replace(file.dataStart + length, length, QByteArray(length, '\0'));
}

/// Puts a remark between two sections. The newer one's distance to the older one, measured
/// between the starts of their marker lines, is then too short.
void insertRemark(QByteArray& bytes, const tresktest::WrittenSection& newer)
{
    bytes.insert(newer.regionStart, "% 2024-03-11, mv:\n% see also drawing H-6205-05\n");
}

} // namespace

QByteArray makeDamaged(const Workshop& workshop)
{
    SampleDocument document(workshop, "housing-drawing"_s);
    const auto oldest = document.addStep(trial(workshop));
    const auto middle = document.addStep(drawing(workshop));
    const auto newest = document.addStep(labelling(workshop));

    QByteArray bytes = document.finish();
    changeSettings(bytes, oldest.files.constFirst());
    loseStretch(bytes, middle.files.constFirst());
    insertRemark(bytes, newest);
    return bytes;
}

} // namespace samples
