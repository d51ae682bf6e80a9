#pragma once

#include <QStringList>

namespace kivmeta {

// The whole program: parses the arguments, picks a platform (offscreen when
// there is nothing to show or no display), and runs the batch edits, the
// dumps, the screenshots or the window. Returns the exit status.
int Run(int argc, char **argv);

// The title shown for the edited files: "a.jpg", "a.jpg, b.jpg" or
// "a.jpg, b.jpg, c.jpg and 497 more", followed by " - kivmeta".
QString WindowTitleForFiles(QStringList const &inNames);

// Whether a display is available to this process, judged from the
// environment before Qt starts.
bool HasDisplay();

} // namespace kivmeta
