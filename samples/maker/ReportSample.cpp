#include "Samples.h"

namespace samples {

namespace {

const QString rootFile = "bearing-report.pdf"_s;

Step recording(const Workshop& workshop)
{
    StepFile trial = workshop.stepFile("sources/trial-017.ini"_s, Purpose::Input, Storage::Plain);
    trial.description = "Settings of the trial"_s;
    trial.lastModified = "2024-02-08 16:21:05"_s;

    StepFile program = workshop.stepFile("sources/rigsim.py"_s, Purpose::Input,
                                         Storage::Compressed);
    program.path = "/opt/rig/bin/rigsim.py"_s;
    program.description = "Recorder of the rig"_s;
    program.lastModified = "2024-01-15 10:02:51"_s;

    StepFile run = workshop.stepFile("run-017.csv"_s, Purpose::Output, Storage::Compressed);
    run.description = "Acceleration of the housing"_s;
    run.comment = "Sensor 2, radial, drive end"_s;
    run.lastModified = "2024-03-05 09:12:43"_s;
    run.attributes = {
        {"sample_rate"_s, "1024"_s, "Hz"_s}, {"duration"_s, "1"_s, "s"_s}, {"sensor"_s, "2"_s, {}}};

    Step step;
    step.rootFile = rootFile;
    step.folder = "/data/trials/017"_s;
    step.timestamp = "2024-03-05 09:12:44"_s;
    step.title = "Record the vibration"_s;
    step.description = "Acceleration of the housing after 612 hours"_s;
    step.comment = "Rig at its operating temperature"_s;
    step.command = "python3 rigsim.py trial-017.ini run-017.csv"_s;
    step.tool = "rigsim.py"_s;
    step.toolPath = program.path;
    step.host = "rig4.lab.example.org"_s;
    step.user = "asato"_s;
    step.files = {trial, program, run};
    step.attributes = {{"bearing"_s, "6205"_s, {}},
                       {"shaft_speed"_s, "25.0"_s, "Hz"_s},
                       {"radial_load"_s, "2400"_s, "N"_s},
                       {"running_time"_s, "612"_s, "h"_s}};
    return step;
}

Step evaluation(const Workshop& workshop)
{
    StepFile run = workshop.stepFile("run-017.csv"_s, Purpose::Input, Storage::NotEmbedded);
    run.path = "/data/trials/017/run-017.csv"_s;
    run.description = "Acceleration of the housing"_s;
    run.comment = "Embedded by the step that recorded it"_s;
    run.lastModified = "2024-03-05 09:12:43"_s;

    StepFile program = workshop.stepFile("sources/spectrum.py"_s, Purpose::Input,
                                         Storage::Compressed);
    program.lastModified = "2024-02-27 13:40:18"_s;

    StepFile spectrum = workshop.stepFile("spectrum-017.csv"_s, Purpose::Output,
                                          Storage::Compressed);
    spectrum.description = "Amplitude spectrum"_s;
    spectrum.lastModified = "2024-03-05 10:47:09"_s;
    spectrum.attributes = {{"resolution"_s, "1"_s, "Hz"_s}};

    StepFile findings = workshop.stepFile("findings-017.csv"_s, Purpose::Output, Storage::Plain);
    findings.description = "The five largest lines"_s;
    findings.lastModified = "2024-03-05 10:47:09"_s;

    Step step;
    step.rootFile = rootFile;
    step.folder = "/home/jholm/evaluation"_s;
    step.timestamp = "2024-03-05 10:47:10"_s;
    step.title = "Compute the spectrum"_s;
    step.description = "Amplitude spectrum of the run and its largest lines"_s;
    step.command = "python3 spectrum.py run-017.csv spectrum-017.csv findings-017.csv"_s;
    step.tool = "spectrum.py"_s;
    step.toolPath = "/home/jholm/evaluation/spectrum.py"_s;
    step.host = "calc2.lab.example.org"_s;
    step.user = "jholm"_s;
    step.files = {run, program, spectrum, findings};
    step.attributes = {{"window"_s, "Hann"_s, {}}};
    return step;
}

Step plotting(const Workshop& workshop)
{
    StepFile program = workshop.stepFile("sources/plot.py"_s, Purpose::Input, Storage::Plain);
    program.description = "Made the drawing from the spectrum"_s;
    program.lastModified = "2024-02-27 14:05:33"_s;

    StepFile drawing = workshop.stepFile("vibration-plot.svg"_s, Purpose::Input,
                                         Storage::Compressed);
    drawing.lastModified = "2024-03-05 11:02:36"_s;

    StepFile page = workshop.stepFile("vibration-plot.pdf"_s, Purpose::Output, Storage::Plain);
    page.description = "The plot for the archive"_s;
    page.lastModified = "2024-03-05 11:02:37"_s;

    Step step;
    step.rootFile = rootFile;
    step.folder = "/home/jholm/evaluation"_s;
    step.timestamp = "2024-03-05 11:02:38"_s;
    step.title = "Plot the spectrum"_s;
    step.command = "rsvg-convert -f pdf -o vibration-plot.pdf vibration-plot.svg"_s;
    step.tool = "rsvg-convert"_s;
    step.toolPath = "/usr/bin/rsvg-convert"_s;
    step.host = "calc2.lab.example.org"_s;
    step.user = "jholm"_s;
    step.files = {program, drawing, page};
    step.attributes = {{"max_frequency"_s, "400"_s, "Hz"_s}};
    return step;
}

Step writing(const Workshop& workshop)
{
    StepFile text = workshop.stepFile("sources/bearing-report.fodt"_s, Purpose::Input,
                                      Storage::Compressed);
    text.description = "Text of the report"_s;
    text.lastModified = "2024-03-05 14:17:48"_s;

    StepFile report = workshop.stepFile(rootFile, Purpose::Output, Storage::NotEmbedded);
    report.description = "This document before its history was added"_s;
    report.lastModified = "2024-03-05 14:20:00"_s;
    report.thumbnailOnly = true;

    StepFile thumbnail = workshop.stepFile("thumbnail.png"_s, Purpose::Output, Storage::Plain);
    thumbnail.description = "First page, small"_s;
    thumbnail.lastModified = "2024-03-05 14:20:03"_s;
    thumbnail.thumbnail = true;

    StepFile preview = workshop.stepFile("preview.png"_s, Purpose::Output, Storage::Plain);
    preview.description = "First page"_s;
    preview.lastModified = "2024-03-05 14:20:03"_s;
    preview.preview = true;
    preview.previewWS = true;

    Step step;
    step.rootFile = rootFile;
    step.folder = "/home/mvinter/reports"_s;
    step.timestamp = "2024-03-05 14:20:05"_s;
    step.title = "Write the report"_s;
    step.description = "Outer race damaged, trial ended"_s;
    step.comment = "Trial closed"_s;
    step.command = "soffice --headless --convert-to pdf bearing-report.fodt"_s;
    step.tool = "LibreOffice"_s;
    step.toolPath = "/usr/bin/soffice"_s;
    step.host = "ws17.office.example.org"_s;
    step.user = "mvinter"_s;
    step.files = {text, report, thumbnail, preview};
    step.attributes = {{"verdict"_s, "outer race damaged"_s, {}}, {"pages"_s, "1"_s, {}}};
    return step;
}

} // namespace

QByteArray makeReport(const Workshop& workshop)
{
    SampleDocument document(workshop, "bearing-report"_s);
    document.addStep(recording(workshop));
    document.addStep(evaluation(workshop));
    document.addStep(plotting(workshop));
    document.addStep(writing(workshop));
    return document.finish();
}

} // namespace samples
