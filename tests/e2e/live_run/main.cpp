// A live run that prints the operator's log as it goes, to be killed by its parent.
// Arguments: the folder for its files, the number of frames, their interval in seconds.

#include "support/LiveRun.h"

#include <QCoreApplication>

#include <cstdio>
#include <string>

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    zenka::test::LiveRun run(argv[1], {"CAM1", "CAM2"}, std::stoi(argv[2]), std::stod(argv[3]));
    run.model.log().lineAdded().connect([](const std::string& line) {
        std::fputs((line + "\n").c_str(), stdout);
        std::fflush(stdout);
    });
    return QCoreApplication::exec();
}
