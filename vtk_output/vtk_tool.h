#ifndef KVX3D_VTK_OUTPUT_VTK_TOOL_H
#define KVX3D_VTK_OUTPUT_VTK_TOOL_H

#include "host_link/export.h"
#include "vtk_output/vtk_data.h"

#include <fstream>
#include <string>
#include <vector>

/// Paths and current step, shared by both writers of a tool.
class VTK_Settings {
public:
    std::string rootDir;  ///< directory of the run; PostRun_DMP replaces it on rank 0
    std::string stepDir;  ///< this process's data directory, set by Initialize
    std::string project;  ///< base name of all files
    double time = 0.0;    ///< physical time of the step being written
    int iteration = 0;    ///< iteration number of the step being written
    int processId = 0;    ///< this process's number, part of every path it writes
    /// Joins all paths; the tool sets the system's own: a backslash on Windows, else a slash.
    std::string separator;
};

/// Writes the step files, and for each a line into the record file of this process.
class VTK_CollectionWriter {
public:
    explicit VTK_CollectionWriter(VTK_Settings* settings);

    /// Opens the record file, truncating what a former run left. True if it is open.
    bool openRecordFile();

    /// Writes every block in registration order. False as soon as one cannot be written: later
    /// blocks are then left out, and this one gets no record.
    bool writeStep();

    /// Appends the record of one step file and flushes it.
    /// @param block         1-based number of the block
    /// @param relativePath  of the step file, from the root directory
    /// @return true always: the stream's state is not looked at
    bool writeRecord(int block, const std::string& relativePath);

    VTK_Settings* settings;          ///< borrowed
    std::ofstream recordFile;        ///< open from Initialize to the post-run
    std::vector<VTK_Block*> blocks;  ///< in registration order, borrowed
};

/// Merges the record files of all processes into one `.pvd` file and deletes them.
class VTK_PvdWriter {
public:
    explicit VTK_PvdWriter(VTK_Settings* settings);

    /// Opens the `.pvd` file and writes its head, or prints a line. True if it is open.
    bool openPvd();

    /// Merges every record file in the root directory; stops at the first that cannot be deleted.
    bool mergeCollections();

    /// Names (without directory) in the root that hold ".vtkcollection", in the order the system
    /// lists them. Neither project nor kind is looked at.
    std::vector<std::string> findCollectionFiles();

    /// Copies the records of one file into the `.pvd` file, up to the first that does not parse,
    /// and deletes the file. True if the delete worked.
    bool mergeCollectionFile(const std::string& name);

    /// Writes the end of the `.pvd` file and closes it. False if it was not open.
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
/// Failures print a line on standard output and answer false; nothing throws or stops the run. A
/// tool destroyed without a post-run leaves step files and records on disk. Names must be free of
/// blanks: the merge reads the record file word by word. A directory and a name in it may have 256
/// characters together: a longer record file is not merged, a longer step file ends the move.
///
/// A copy shares all parts with its source, and only one of the two may be destroyed.
class KVX3D_API CKVX_ART_VTK_Tool {
public:
    CKVX_ART_VTK_Tool();
    CKVX_ART_VTK_Tool(const CKVX_ART_VTK_Tool&) = default;
    CKVX_ART_VTK_Tool& operator=(const CKVX_ART_VTK_Tool&) = default;
    virtual ~CKVX_ART_VTK_Tool();

    /// Names the run, makes its data directory and opens the record file. Once per tool.
    ///
    /// @param rootDir    existing directory, without a separator at its end
    /// @param project    base name of all files, free of blanks
    /// @param processId  number of this process, its own among all that share the root
    /// @return true if the data directory is there and the record file is open
    bool Initialize(char* rootDir, char* project, int processId);

    /// Registers a block, which must outlive the stepping.
    /// @return its 1-based number in file names
    int newBlockData(VTK_Block* block);

    /// Writes all blocks with what their arrays hold now. True if every block was written.
    ///
    /// Two steps whose iterations agree and whose times agree to six digits share their files.
    bool OutputRun(double time, int iteration);

    /// Ends a run of processes that share one root: rank 0 waits 100 ms, then merges all records
    /// found in the root. True always.
    bool PostRun_Single_SMP(int processRank);

    /// Ends a distributed run: every process moves its record file and its data directory to
    /// `targetDir` (which must exist, and be another directory than the root); rank 0 merges there
    /// 100 ms after its own record has moved. True always.
    bool PostRun_DMP(int processRank, char* targetDir);

    /// Lists the entries of the current directory whose names hold "ACMT". True always.
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
