#include <exception>
#include <iostream>

#include "reference_host/command_line.h"

/// A small flow solver that hosts the toolbox; `reference_host --help` lists its cases.
int main(int argc, char** argv) try {
    const host::Command command = host::ReadCommand(argc, argv);
    switch (command.task) {
        case host::Task::Cylinder:
            return host::RunCylinder(command.cylinder);
        case host::Task::Heat:
            return host::RunHeat(command.heat);
        case host::Task::Mms:
            return host::RunMms(command.mms);
        case host::Task::Nonmatching:
            return host::RunNonmatching(command.nonmatching);
        case host::Task::Dump:
            return host::RunDump(command.dump);
        case host::Task::Sphere:
            return host::RunSphere(command.sphere);
        case host::Task::ShowHelp:
            std::cout << command.help;
    }
    return 0;
} catch (const std::exception& error) {
    std::cerr << "reference_host: " << error.what() << '\n';
    return 1;
}
