#include "Samples.h"

namespace samples {

QByteArray makeMinimal(const Workshop& workshop)
{
    Step step;
    step.rootFile = "label.pdf"_s;
    step.folder = "/home/asato"_s;
    step.timestamp = "2024-03-06 08:15:01"_s;
    step.title = "Draw the label"_s;
    step.command = "rsvg-convert -f pdf -o label.pdf label.svg"_s;
    step.tool = "rsvg-convert"_s;
    step.toolPath = "/usr/bin/rsvg-convert"_s;
    step.host = "ws12.office.example.org"_s;
    step.user = "asato"_s;
    step.files = {workshop.stepFile("sources/label.svg"_s, Purpose::Input, Storage::Plain)};

    SampleDocument document(workshop, "label"_s);
    document.addStep(step);
    return document.finish();
}

} // namespace samples
