#include <exception>
#include <iostream>

#include "reference_host/case_heat.h"
#include "reference_host/case_mms.h"
#include "reference_host/command_line.h"

/// A small flow solver that hosts the toolbox; `reference_host --help` lists its cases.
int main(int argc, char** argv) try {
    const host::Command command = host::ReadCommand(argc, argv);
    switch (command.task) {
        case host::Task::Heat:
            return host::RunHeat(command.heat);
        case host::Task::Mms:
            return host::RunMms(command.mms);
        case host::Task::ShowHelp:
            std::cout << command.help;
    }
    return 0;
} catch (const std::exception& error) {
    std::cerr << "reference_host: " << error.what() << '\n';
    return 1;
}
