// tolvik-batch: starts like the window (offscreen), applies the global options,
// runs one command as if its button were clicked, answers its questions from the
// arguments and prints every message it shows.
//
//   tolvik-batch [--folder DIR] [--set TextN=VALUE]... [--column LETTER]
//                [--adsorption | --desorption] [--save-settings] COMMAND [ARGS]
//   tolvik-batch --help | --version
//
// Without --folder the program folder is chosen as the window's (Programmappe.h).
// Exit status: 0 normal end, 1 stopped at a message of refusal or error,
// 2 usage error or a question the arguments do not answer.
#pragma once

namespace app {

int kjorBatch(int argc, char** argv);

}  // namespace app
