// tolvik-batch: the window's commands from the command line, dialogs answered by the arguments.
#include "app/Batch.h"

int main(int argc, char** argv) { return app::kjorBatch(argc, argv); }
