#include "Samples.h"

namespace samples {

namespace {

/// A small text file that says which name it was given.
StepFile named(const QString& name, Storage storage = Storage::Plain)
{
    StepFile file;
    file.name = name;
    file.content = "This file is called \"" + name.toUtf8() + "\".\n";
    file.storage = storage;
    file.filetype = "text/plain"_s;
    return file;
}

Step baseStep()
{
    Step step;
    step.rootFile = "vibration-plot.pdf"_s;
    step.folder = "/data/names"_s;
    step.tool = "namer"_s;
    step.toolPath = "/opt/names/bin/namer"_s;
    step.command = "namer vibration-plot.pdf"_s;
    step.host = "ws12.office.example.org"_s;
    step.user = "asato"_s;
    return step;
}

Step otherScripts()
{
    Step step = baseStep();
    step.timestamp = "2024-03-07 10:00:00"_s;
    step.title = "Prüfung [Teil 1] mit \\ und Ω"_s;
    step.description = "Names in other scripts"_s;
    step.user = "müller"_s;
    step.files = {
        named("Messgröße Überprüfung.txt"_s),
        named("μετρήσεις.txt"_s, Storage::Compressed),
        named("軸受試験.txt"_s),
        named("испытание.txt"_s, Storage::Compressed),
        named("bearing \U0001F529.txt"_s),
        // The same letters, composed and decomposed.
        named("M\u00FCller.txt"_s),
        named("Mu\u0308ller.txt"_s),
        named("軸"_s.repeated(100) + ".txt"_s, Storage::Compressed),
    };
    step.attributes = {{"Größe"_s, "52"_s, "µm"_s}};
    return step;
}

Step awkwardNames()
{
    Step step = baseStep();
    step.timestamp = "2024-03-07 10:05:00"_s;
    step.title = "Two lines\nof a title"_s;
    step.description = "Names that need escapes or upset a terminal"_s;
    step.files = {
        named("result [final].txt"_s),
        named(R"(back\slash.txt)"_s),
        named("two\nlines.txt"_s, Storage::Compressed),
        named("tab\tand bell\a.txt"_s),
        named("carriage\rreturn.txt"_s),
        named("\u001B[31mred\u001B[0m.txt"_s),
        // A right-to-left override shows this as ending in "exe.png".
        named("plot\u202Egnp.exe"_s),
        named("R&D <b>draft</b>.txt"_s, Storage::Compressed),
    };
    return step;
}

Step noPaths()
{
    Step step = baseStep();
    step.timestamp = "2024-03-07 10:10:00"_s;
    step.title = "Names that are no good as paths"_s;
    StepFile twin = named("twin.txt"_s, Storage::Compressed);
    twin.content = "The other twin.\n";
    step.files = {
        named("../outside.txt"_s),
        named("../../../../etc/outside.txt"_s, Storage::Compressed),
        named("/etc/absolute.txt"_s),
        named(R"(C:\rig4\absolute.txt)"_s),
        named("folder/"_s),
        named(QString()),
        named("."_s),
        named(".."_s),
        named("twin.txt"_s),
        twin,
        named("Readme.txt"_s),
        named("README.TXT"_s),
        named("CON"_s),
        named("nul.txt"_s),
        named("-rf"_s),
        named("ends with a dot."_s),
        named("ends with a blank "_s),
    };
    return step;
}

} // namespace

QByteArray makeNames(const Workshop& workshop)
{
    SampleDocument document(workshop, "vibration-plot"_s);
    document.addStep(otherScripts());
    document.addStep(awkwardNames());
    document.addStep(noPaths());
    return document.finish();
}

} // namespace samples
