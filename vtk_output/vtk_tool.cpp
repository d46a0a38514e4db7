#include "vtk_output/vtk_tool.h"

#include <cstdio>
#include <iostream>
#include <locale>

#include "host_link/detail/last_stores.h"
#include "vtk_output/detail/number_text.h"
#include "vtk_output/detail/platform.h"
#include "vtk_output/dir_iterator.h"
#include "vtk_output/vtk_xml.h"

namespace {

using kvx3d::detail::numberText;

constexpr int mergeWaitMilliseconds = 100;  // lets other processes close their record files

/// project_P: the data directory of this process, relative to the root.
std::string DataDirName(const VTK_Settings& settings) {
    return settings.project + '_' + numberText(settings.processId);
}

/// project.vtkcollection_P: the record file of this process, relative to the root.
std::string RecordFileName(const VTK_Settings& settings) {
    return settings.project + ".vtkcollection_" + numberText(settings.processId);
}

/// True if `text` occurs anywhere in `name`.
bool Contains(const std::string& name, const std::string& text) {
    return name.find(text) != std::string::npos;
}

/// The current entry; its name is empty if the entry cannot be read.
VTK_DirEntry ReadEntry(const VTK_DirIterator& dir) {
    VTK_DirEntry entry = {};
    dir.Read(&entry);
    return entry;
}

/// Prints the line and flushes the standard output of C++ and of C, since a host may use either.
void PrintError() {
    std::cout << "Error" << std::endl;
    std::fflush(stdout);
}

}  // namespace

// --- VTK_CollectionWriter ---

VTK_CollectionWriter::VTK_CollectionWriter(VTK_Settings* toolSettings) : settings(toolSettings) {}

bool VTK_CollectionWriter::openRecordFile() {
    if (recordFile.is_open()) {
        recordFile.close();
    }
    recordFile.open(settings->rootDir + settings->separator + RecordFileName(*settings));
    return recordFile.is_open();
}

bool VTK_CollectionWriter::writeStep() {
    int number = 0;
    for (VTK_Block* block : blocks) {
        ++number;
        const std::string fileName = settings->project + "_Itr" + numberText(settings->iteration) +
                                     "_T" + numberText(settings->time) + "_P" +
                                     numberText(settings->processId) + "_B" + numberText(number) +
                                     fileExtension(block->blockType);
        const std::string fullPath = settings->stepDir + settings->separator + fileName;
        const std::string relativePath = DataDirName(*settings) + settings->separator + fileName;
        // No file is written for a block of another type, but it keeps its place in the series: it
        // gets a record, whose file name has no extension.
        if (block->blockType == 0 && !writeVTUFile(fullPath, block)) {
            std::cout << "File: " << fullPath << " Open Error" << std::endl;
            return false;
        }
        if (!writeRecord(number, relativePath)) {
            std::cout << " Collect File Write Error! " << std::endl;
            return false;
        }
    }
    return true;
}

bool VTK_CollectionWriter::writeRecord(int block, const std::string& relativePath) {
    recordFile << numberText(settings->iteration) << '\t' << numberText(settings->time) << '\t'
               << numberText(settings->processId) << '\t' << numberText(block) << '\t'
               << relativePath << std::endl;
    return true;
}

// --- VTK_PvdWriter ---

VTK_PvdWriter::VTK_PvdWriter(VTK_Settings* toolSettings) : settings(toolSettings) {}

bool VTK_PvdWriter::openPvd() {
    if (pvdFile.is_open()) {
        pvdFile.close();
    }
    pvdFile.open(settings->rootDir + settings->separator + settings->project + ".pvd");
    if (!pvdFile.is_open()) {
        std::cout << "PVD File Open Error" << std::endl;
        return false;
    }
    pvdFile << "<?xml version = \"1.0\"?>" << std::endl;
    pvdFile << "<VTKFile type = \"Collection\" version = \"0.1\" byte_order = \"LittleEndian\">"
            << std::endl;
    pvdFile << "<Collection>" << std::endl;
    return true;
}

bool VTK_PvdWriter::mergeCollections() {
    for (const std::string& name : findCollectionFiles()) {
        if (!mergeCollectionFile(name)) {
            return false;
        }
    }
    return true;
}

std::vector<std::string> VTK_PvdWriter::findCollectionFiles() {
    std::vector<std::string> names;
    VTK_DirIterator dir;
    dir.Open(settings->rootDir.c_str());
    while (dir.hasNext) {
        const VTK_DirEntry entry = ReadEntry(dir);
        if (Contains(entry.name, ".vtkcollection")) {
            names.push_back(entry.name);
        }
        dir.Next();
    }
    dir.Close();
    return names;
}

bool VTK_PvdWriter::mergeCollectionFile(const std::string& name) {
    const std::string path = settings->rootDir + settings->separator + name;
    std::cout << path << std::endl;

    std::ifstream records(path);
    records.imbue(std::locale::classic());
    int iteration;  // read and ignored: a series is ordered by time
    double time;
    int process;
    int block;
    std::string file;
    while (records >> iteration >> time >> process >> block >> file) {
        pvdFile << "<DataSet timestep=\"" << numberText(time) << "\" group=\"" << numberText(block)
                << "\" part=\"" << numberText(process) << "\" file=\"" << file << "\"/>"
                << std::endl;
    }
    records.close();
    return kvx3d::detail::Remove(path.c_str()) == 0;
}

bool VTK_PvdWriter::closePvd() {
    if (!pvdFile.is_open()) {
        return false;
    }
    pvdFile << "</Collection>" << std::endl;
    pvdFile << "</VTKFile>" << std::endl;
    pvdFile.close();
    return true;
}

// --- CKVX_ART_VTK_Tool ---

CKVX_ART_VTK_Tool::CKVX_ART_VTK_Tool() {
    settings = new VTK_Settings;
    settings->separator = kvx3d::detail::pathSeparator;
    collectionWriter = new VTK_CollectionWriter(settings);
    pvdWriter = new VTK_PvdWriter(settings);
}

CKVX_ART_VTK_Tool::~CKVX_ART_VTK_Tool() {
    delete pvdWriter;
    pvdWriter = nullptr;
    delete collectionWriter;
    collectionWriter = nullptr;
    delete settings;
    settings = nullptr;
    kvx3d::detail::KeepLastStores();
}

bool CKVX_ART_VTK_Tool::Initialize(char* rootDir, char* project, int processId) {
    settings->rootDir = rootDir;
    settings->project = project;
    settings->processId = processId;
    // Appended to and never reset: the blocks and records of a tool belong to one directory. A
    // second call therefore builds a doubled path, which cannot be created, and fails instead of
    // mixing two series.
    settings->stepDir += settings->rootDir + settings->separator + DataDirName(*settings);
    if (!OpenDir(settings->stepDir)) {
        return false;
    }
    return collectionWriter->openRecordFile();
}

int CKVX_ART_VTK_Tool::newBlockData(VTK_Block* block) {
    collectionWriter->blocks.push_back(block);
    return static_cast<int>(collectionWriter->blocks.size());
}

bool CKVX_ART_VTK_Tool::OutputRun(double time, int iteration) {
    settings->time = time;
    settings->iteration = iteration;
    return collectionWriter->writeStep();
}

bool CKVX_ART_VTK_Tool::PostRun_Single_SMP(int processRank) {
    collectionWriter->recordFile.close();
    if (processRank != 0) {
        return true;
    }
    kvx3d::detail::SleepMilliseconds(mergeWaitMilliseconds);
    pvdWriter->openPvd();
    pvdWriter->mergeCollections();
    pvdWriter->closePvd();
    return true;
}

bool CKVX_ART_VTK_Tool::PostRun_DMP(int processRank, char* targetDir) {
    const std::string target = targetDir;
    collectionWriter->recordFile.close();
    if (!MPI_MoveCollectionFile(target)) {
        PrintError();
    }
    if (processRank == 0) {
        kvx3d::detail::SleepMilliseconds(mergeWaitMilliseconds);
        settings->rootDir = target;
        pvdWriter->openPvd();
        pvdWriter->mergeCollections();
        pvdWriter->closePvd();
    }
    // After the merge, so that the series is complete even if moving the step files takes long or
    // fails.
    if (!MPI_MoveDataFolder(target)) {
        PrintError();
    }
    return true;
}

bool CKVX_ART_VTK_Tool::test() {
    VTK_DirIterator dir;
    dir.Open(".\\");
    while (dir.hasNext) {
        const VTK_DirEntry entry = ReadEntry(dir);
        if (Contains(entry.name, "ACMT")) {
            for (const char* character = entry.name; *character != '\0'; ++character) {
                std::printf("%c", *character);
            }
            std::printf(entry.isDir ? "/\n" : "\n");
        }
        dir.Next();
    }
    dir.Close();
    return true;
}

/// True if the path exists afterward, as a directory or anything else. Creates the last level
/// only.
bool CKVX_ART_VTK_Tool::OpenDir(std::string path) {
    if (kvx3d::detail::Access(path.c_str()) == 0) {
        return true;
    }
    return kvx3d::detail::MakeDir(path.c_str()) == 0;
}

/// True if the path exists, as a directory or as a file.
bool CKVX_ART_VTK_Tool::CheckDir(std::string path) {
    return kvx3d::detail::Access(path.c_str()) == 0;
}

/// True if the path does not exist afterward. The directory must be empty.
bool CKVX_ART_VTK_Tool::DeleteDir(std::string path) {
    if (kvx3d::detail::Access(path.c_str()) != 0) {
        return true;
    }
    return kvx3d::detail::RemoveDir(path.c_str()) == 0;
}

/// Moves a file by copying and deleting it, so also between file systems. False if either file
/// cannot be opened. A source that cannot be deleted is reported and counts as moved.
bool CKVX_ART_VTK_Tool::FileCopyAndRemoveSource(std::string source, std::string target) {
    // Both are opened before either is tested, so the target is truncated in any case.
    std::ifstream in(source, std::ios::binary);
    std::ofstream out(target, std::ios::binary);
    if (!in.is_open() || !out.is_open() || kvx3d::detail::IsDirectory(source.c_str())) {
        std::cout << ">> Error: Open File Error!" << std::endl;
        return false;
    }

    // The last byte is written twice, so a moved file is one byte longer than its source, and an
    // empty file gets one byte. Step and record files end with a newline, and their readers skip
    // the second one. Code that compares sizes before and after a move must allow for the byte.
    std::vector<char> buffer(1 << 16);
    char last = '\n';
    do {
        in.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
        if (in.gcount() > 0) {
            out.write(buffer.data(), in.gcount());
            last = buffer[static_cast<std::size_t>(in.gcount()) - 1];
        }
    } while (in);
    out.put(last);
    in.close();
    out.close();
    if (kvx3d::detail::Remove(source.c_str()) != 0) {
        std::cout << ">> Error: Delete File Error!" << std::endl;
    }
    return true;
}

/// Moves the record file of this process. Always true: the move itself prints a line if the file
/// could not be moved.
bool CKVX_ART_VTK_Tool::MPI_MoveCollectionFile(std::string targetDir) {
    const std::string name = settings->separator + RecordFileName(*settings);
    FileCopyAndRemoveSource(settings->rootDir + name, targetDir + name);
    return true;
}

/// Moves the files in the data directory of this process, then removes the directory. False at the
/// first file that cannot be moved; files moved before remain moved.
bool CKVX_ART_VTK_Tool::MPI_MoveDataFolder(std::string targetDir) {
    const std::string targetStepDir = targetDir + settings->separator + DataDirName(*settings);
    if (!OpenDir(targetStepDir)) {
        return false;
    }
    VTK_DirIterator dir;
    dir.Open(settings->stepDir.c_str());
    while (dir.hasNext) {
        const std::string name = ReadEntry(dir).name;
        if (name != "." && name != "..") {
            // A subdirectory counts as a file that cannot be opened, which ends the move.
            if (!FileCopyAndRemoveSource(settings->stepDir + settings->separator + name,
                                         targetStepDir + settings->separator + name)) {
                // The listing stays open: a post-run is the last operation of a tool, and the end
                // of the process releases the handle.
                return false;
            }
        }
        dir.Next();
    }
    dir.Close();
    DeleteDir(settings->stepDir);
    return true;
}
