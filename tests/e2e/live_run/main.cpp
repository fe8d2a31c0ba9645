// A live run that prints the operator's log as it goes, to be killed by its parent.
// Arguments: the folder for its files, the number of frames, their interval in seconds. With the folder
// alone it does what the program does when started again: it offers the run that was killed, and goes on.

#include "support/LiveRun.h"

#include <QCoreApplication>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const std::vector<std::string> bodies{"CAM1", "CAM2"};
    const auto run = argc > 3 ? std::make_unique<zenka::test::LiveRun>(argv[1], bodies, std::stoi(argv[2]),
                                                                       std::stod(argv[3]))
                              : std::make_unique<zenka::test::LiveRun>(argv[1], bodies);
    run->model.log().lineAdded().connect([](const std::string& line) {
        std::fputs((line + "\n").c_str(), stdout);
        std::fflush(stdout);
    });
    if (argc <= 3) {
        run->model.bootstrap();
        std::puts(run->model.keeper().resumableRun().get() ? "offered" : "nothing to offer");
        run->model.keeper().resumeRun();
    }
    return QCoreApplication::exec();
}
