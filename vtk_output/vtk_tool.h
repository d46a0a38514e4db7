#ifndef KVX3D_VTK_OUTPUT_VTK_TOOL_H
#define KVX3D_VTK_OUTPUT_VTK_TOOL_H

#include "host_link/export.h"
#include "vtk_output/vtk_data.h"

#include <fstream>
#include <string>
#include <vector>

/// Paths and the current step, shared by both writers of a tool.
class VTK_Settings {
public:
    std::string rootDir;  ///< directory of the run; PostRun_DMP replaces it on rank 0
    std::string stepDir;  ///< data directory of this process, set by Initialize
    std::string project;  ///< base name of all files
    double time = 0.0;    ///< physical time of the step being written
    int iteration = 0;    ///< iteration number of the step being written
    int processId = 0;    ///< number of this process, part of every path that it writes
    /// Joins the levels of all paths; the tool sets a backslash on Windows, otherwise a slash.
    std::string separator;
};

/// Writes the step files, and one line for each of them into the record file of this process.
class VTK_CollectionWriter {
public:
    explicit VTK_CollectionWriter(VTK_Settings* settings);

    /// Opens the record file and empties one that an earlier run has left. True if it is open.
    bool openRecordFile();

    /// Writes every block in registration order. Returns false at the first block that cannot be
    /// written; this block gets no record, and the blocks after it are not written.
    bool writeStep();

    /// Appends the record of one step file and flushes it.
    /// @param block         1-based number of the block
    /// @param relativePath  path of the step file, relative to the root directory
    /// @return true always; the state of the stream is not checked
    bool writeRecord(int block, const std::string& relativePath);

    VTK_Settings* settings;          ///< borrowed
    std::ofstream recordFile;        ///< open from Initialize until the post-run
    std::vector<VTK_Block*> blocks;  ///< in registration order, borrowed
};

/// Merges the record files of all processes into one `.pvd` file and deletes them.
class VTK_PvdWriter {
public:
    explicit VTK_PvdWriter(VTK_Settings* settings);

    /// Opens the `.pvd` file and writes its header, or prints a line. True if it is open.
    bool openPvd();

    /// Merges all record files in the root directory; stops at the first that cannot be deleted.
    bool mergeCollections();

    /// Names (without directory) in the root directory that contain ".vtkcollection", in the order
    /// in which the system lists them, whatever their project and whether file or directory.
    std::vector<std::string> findCollectionFiles();

    /// Copies the records of one file into the `.pvd` file, up to the first that cannot be parsed,
    /// and deletes the file. True if the file was deleted.
    bool mergeCollectionFile(const std::string& name);

    /// Writes the last lines of the `.pvd` file and closes it. False if it was not open.
    bool closePvd();

    VTK_Settings* settings;  ///< borrowed
    std::ofstream pvdFile;   ///< open during the post-run only
};

/// Writes blocks as a time series of `.vtu` files with a `.pvd` index.
///
/// Calling order: construct, Initialize() once, newBlockData() for each block, OutputRun() at each
/// output step, then one of the post-runs. Files of a run, R the root, J the project, P the
/// process, I the iteration, T the time (six digits), B the block:
///
///     R/J_P/J_ItrI_TT_PP_BB.vtu    one per block and step
///     R/J.vtkcollection_P          one record line per step file, until the post-run
///     R/J.pvd                      the series, written by the post-run of rank 0
///
/// Operations that fail print a line on standard output and return false; none throws or stops the
/// run. A tool that is destroyed without a post-run leaves step files and records on disk. Names
/// must not contain blanks, because the merge reads the record file word by word. A directory and a
/// name in it may have 256 characters together. A record file with a longer path is not merged; at
/// a step file with a longer path PostRun_DMP() stops moving files.
///
/// A copy shares all parts with its source, and only one of the two may be destroyed.
class KVX3D_API CKVX_ART_VTK_Tool {
public:
    CKVX_ART_VTK_Tool();
    CKVX_ART_VTK_Tool(const CKVX_ART_VTK_Tool&) = default;
    CKVX_ART_VTK_Tool& operator=(const CKVX_ART_VTK_Tool&) = default;
    virtual ~CKVX_ART_VTK_Tool();

    /// Names the run, creates its data directory and opens the record file. Call it once per tool.
    ///
    /// @param rootDir    existing directory, without a separator at its end
    /// @param project    base name of all files, without blanks
    /// @param processId  number of this process, unique among all that share the root directory
    /// @return true if the data directory exists and the record file is open
    bool Initialize(char* rootDir, char* project, int processId);

    /// Registers a block, which must exist until the last OutputRun().
    /// @return its 1-based number in file names
    int newBlockData(VTK_Block* block);

    /// Writes all blocks with the current values of their arrays. True if every block was written.
    ///
    /// Two steps with equal iterations and times equal to six digits write the same files.
    bool OutputRun(double time, int iteration);

    /// Ends a run of processes that share one root directory: rank 0 waits 100 ms, then merges all
    /// records found there. Always true.
    bool PostRun_Single_SMP(int processRank);

    /// Ends a distributed run: every process moves its record file and its data directory to
    /// `targetDir` (which must exist, and be another directory than the root); rank 0 merges there
    /// 100 ms after its own record file was moved. Always true.
    bool PostRun_DMP(int processRank, char* targetDir);

    /// Prints the entries of the current directory whose names contain "ACMT". Always true.
    bool test();

    VTK_Settings* settings;                  ///< owned
    VTK_CollectionWriter* collectionWriter;  ///< owned
    VTK_PvdWriter* pvdWriter;                ///< owned

private:
    bool OpenDir(std::string path);
    bool CheckDir(std::string path);
    bool DeleteDir(std::string path);
    bool FileCopyAndRemoveSource(std::string source, std::string target);
    bool MPI_MoveCollectionFile(std::string targetDir);
    bool MPI_MoveDataFolder(std::string targetDir);
};

#endif
