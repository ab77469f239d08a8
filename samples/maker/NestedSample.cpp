#include "Samples.h"

namespace samples {

namespace {

/// A document with a history as an input of another.
StepFile embedded(const QString& name, const QByteArray& document, Storage storage)
{
    StepFile file;
    file.name = name;
    file.content = document;
    file.storage = storage;
    file.filetype = "application/pdf"_s;
    file.description = "With its own history"_s;
    return file;
}

/// The housing drawing, whose second step used the label.
QByteArray drawing(const Workshop& workshop)
{
    Step draw;
    draw.rootFile = "housing-drawing.pdf"_s;
    draw.folder = "/home/asato/housing"_s;
    draw.timestamp = "2024-02-12 09:30:01"_s;
    draw.title = "Draw the housing"_s;
    draw.command = "ps2pdf housing-drawing.ps housing-drawing.pdf"_s;
    draw.tool = "ps2pdf"_s;
    draw.toolPath = "/usr/bin/ps2pdf"_s;
    draw.host = "ws12.office.example.org"_s;
    draw.user = "asato"_s;
    draw.files = {
        workshop.stepFile("sources/housing-drawing.ps"_s, Purpose::Input, Storage::Compressed)};
    draw.attributes = {{"drawing"_s, "H-6205-04"_s, {}}, {"bore"_s, "52"_s, "mm"_s}};

    Step check = draw;
    check.timestamp = "2024-03-06 08:20:40"_s;
    check.title = "Check the drawing"_s;
    check.description = "Bore and fit agree with the bearing"_s;
    check.command = "check-drawing --label label.pdf.tresk housing-drawing.pdf"_s;
    check.tool = "check-drawing"_s;
    check.toolPath = "/opt/drawings/bin/check-drawing"_s;
    check.user = "mvinter"_s;
    check.files = {embedded("label.pdf.tresk"_s, makeMinimal(workshop), Storage::Compressed)};
    check.attributes = {{"approved"_s, "yes"_s, {}}};

    SampleDocument document(workshop, "housing-drawing"_s);
    document.addStep(draw);
    document.addStep(check);
    return document.finish();
}

QByteArray plot(const Workshop& workshop)
{
    Step step;
    step.rootFile = "vibration-plot.pdf"_s;
    step.folder = "/home/jholm/evaluation"_s;
    step.timestamp = "2024-03-05 11:02:38"_s;
    step.title = "Plot the spectrum"_s;
    step.command = "rsvg-convert -f pdf -o vibration-plot.pdf vibration-plot.svg"_s;
    step.tool = "rsvg-convert"_s;
    step.toolPath = "/usr/bin/rsvg-convert"_s;
    step.host = "calc2.lab.example.org"_s;
    step.user = "jholm"_s;
    step.files = {workshop.stepFile("vibration-plot.svg"_s, Purpose::Input, Storage::Compressed)};

    SampleDocument document(workshop, "vibration-plot"_s);
    document.addStep(step);
    return document.finish();
}

} // namespace

QByteArray makeNested(const Workshop& workshop)
{
    Step note;
    note.rootFile = "evaluation-note.pdf"_s;
    note.folder = "/home/jholm/evaluation"_s;
    note.timestamp = "2024-03-05 12:40:02"_s;
    note.title = "Write the evaluation note"_s;
    note.command = "pdflatex evaluation-note.tex"_s;
    note.tool = "pdflatex"_s;
    note.toolPath = "/usr/bin/pdflatex"_s;
    note.host = "calc2.lab.example.org"_s;
    note.user = "jholm"_s;
    note.files = {
        workshop.stepFile("sources/evaluation-note.tex"_s, Purpose::Input, Storage::Compressed),
        embedded("vibration-plot.pdf.tresk"_s, plot(workshop), Storage::Compressed)};
    note.attributes = {{"outer_race"_s, "89.6"_s, "Hz"_s}, {"inner_race"_s, "135.4"_s, "Hz"_s}};

    Step compare = note;
    compare.timestamp = "2024-03-06 09:05:27"_s;
    compare.title = "Compare with the drawing"_s;
    compare.comment = "The fit of the housing did not cause the damage"_s;
    compare.command = "compare-fit --drawing housing-drawing.pdf.tresk"_s;
    compare.tool = "compare-fit"_s;
    compare.toolPath = "/home/jholm/bin/compare-fit"_s;
    // Stored plain, so that markers of the inner document stand in the outer one.
    compare.files = {embedded("housing-drawing.pdf.tresk"_s, drawing(workshop), Storage::Plain)};
    compare.attributes = {{"fit"_s, "H7"_s, {}}};

    SampleDocument document(workshop, "evaluation-note"_s);
    document.addStep(note);
    document.addStep(compare);
    return document.finish();
}

} // namespace samples
