// The engine's centre: takes paths, backs them up, queues their target files, converts them.
#pragma once

#include "engine/backup_manager.h"
#include "engine/file_list.h"
#include "engine/lost_characters.h"
#include "engine/progress_window.h"
#include "engine/pthread_conditional.h"
#include "engine/services.h"
#include "engine/target_files.h"
#include "textutil/encoding_info.h"
#include "textutil/text_pieces.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace zelmora {

/// An HFS code from the first four UTF-16 units of `string` (the low byte of each, padded with
/// spaces), the first in the most significant byte; 0 for no or empty text.
[[nodiscard]] uint32_t FourCharCodeFromString(std::optional<std::u16string_view> string);

/// The four characters of an HFS code; empty for 0.
[[nodiscard]] std::u16string StringFromFourCharCode(uint32_t code);

/// Receives paths on the main thread, backs them up, expands folders into the target files they
/// hold and queues these; one worker thread takes them from the queue and converts them one at a
/// time. Its operations fill one file for each subject: job, targets, conversion, destination.
///
/// Settings are read at each use and kept no longer than one conversion. Paths are raw bytes,
/// absolute. The worker never touches a window: what the user is to see it schedules on the main
/// queue.
class ZelDocumentController : public ProgressWindowDelegate {
  public:
    /// Starts the worker, which finds the queue empty and sleeps. Main thread. The foundation
    /// library must be initialised.
    explicit ZelDocumentController(const EngineServices& services);
    /// Waits for the worker as long as it takes, unless releaseContents() has answered YES.
    ~ZelDocumentController() override;
    ZelDocumentController(const ZelDocumentController&) = delete;
    ZelDocumentController& operator=(const ZelDocumentController&) = delete;

    // The job (document_controller_job.cpp). Main thread, but for what is the worker's.

    /// Adds what a file URL names; anything else is ignored.
    void openDocumentWithContentsOfURL(std::string_view url);
    /// Adds a path.
    void openDocumentWithContentsOfFile(const std::string& path);
    /// Backs `path` up, shows the progress window and queues the targets under it. The worker is
    /// not woken: the caller does that once after a whole batch.
    void addPath(const std::string& path);
    /// Wakes the worker if anything is queued; answers whether it did.
    bool wakeupThreadIfNeed();
    /// What the progress window's Cancel does, for front-ends with other ways to say it.
    void cancel();
    /// Empties the queue; the file in hand is finished.
    bool onCancelProgressWindow(ProgressWindow& progressWindow) override;
    /// Tells the worker to end and waits for it, at most 10 seconds. YES: it has ended and all is
    /// released. NO: it is still converting and everything it uses has been left alive, so neither
    /// this object nor its services may be destroyed before the process ends.
    bool releaseContents();

    /// Called on the main thread once for each batch, when the worker has come to the end of all
    /// that it had been woken for, also when Cancel emptied the queue.
    void setBatchFinishedHandler(std::function<void()> handler);

    /// Called on the main thread for each converted file that lost characters, before the end of
    /// its batch is told.
    void setLostCharactersHandler(std::function<void(const LostCharacters&)> handler);

    /// How many files were converted since the controller was made, and how many conversions,
    /// backups and searches of folders failed. Any thread.
    [[nodiscard]] uint64_t convertedCount() const { return _convertedCount; }
    [[nodiscard]] uint64_t failedCount() const { return _failedCount; }

    // Targets: as TargetFiles tells them.

    /// Queues the target files under `path`. YES if at least one was queued. A folder that cannot
    /// be read is counted as a failure and the user is told.
    bool scanFiles(const std::string& path);
    [[nodiscard]] bool checkIsTarget(const std::string& path) const;
    [[nodiscard]] bool isHTMLFile(const std::string& path) const;
    [[nodiscard]] bool isXMLFile(const std::string& path) const;
    [[nodiscard]] bool isCSSFile(const std::string& path) const;
    [[nodiscard]] bool isExtensionInUserDefaults(std::string_view extension,
                                                 std::string_view key) const;

    // Conversion of one file (document_controller_conversion.cpp). The worker's.

    /// Converts the file at `srcPath` and puts the result in its place; logs it; on failure leaves
    /// the source as it was (but for what doConvertProcessPostDstPath says) and schedules an alert.
    /// Running out of memory is a failure like any other.
    void doConvertProcess(const std::string& srcPath);
    /// Adds what the target encoding cannot hold to `alterations`.
    [[nodiscard]] std::optional<platform::Bytes>
    doConvertProcessEncoding(std::u16string_view text, OrvEncodingInfo srcEncodingInfo,
                             platform::Alterations& alterations) const;

    // Declarations (document_controller_declarations.cpp). The worker's; each changes `text` in
    // place or leaves it alone. A foundation-library pool must be open for the style sheets.

    /// Makes the HTML "meta" declaration name the target encoding, or inserts one after "<head>".
    void doConvertProcessMETAElement(std::u16string& text, OrvEncodingInfo srcEncodingInfo) const;
    /// Makes the XML declaration name the target encoding.
    void doConvertProcessXMLProcInstruction(std::u16string& text,
                                            OrvEncodingInfo srcEncodingInfo) const;
    /// Visits the "link" elements and leaves each as it is; no step of a conversion.
    void doConvertProcessLinkElement(std::u16string& text, OrvEncodingInfo srcEncodingInfo) const;
    /// Makes a style sheet's "@charset" rule name the target encoding, or inserts one at the top.
    /// `srcLineBreak` is the text's line break before any was converted.
    void doConvertProcessCSSElement(std::u16string& text, OrvEncodingInfo srcEncodingInfo,
                                    OrvLineBreak srcLineBreak) const;

    // Destination (document_controller_destination.cpp).

    /// The sibling of `path` of the form name#n.extension.
    [[nodiscard]] static std::string numberedPath(const std::string& path, uint32_t n);
    /// The first of these, n from 0, that is free.
    [[nodiscard]] std::string dstPathForSrcPath(const std::string& path) const;

    /// Gives the converted file at `dstPath` its HFS codes, deletes the source and moves the
    /// converted file to its final name. On failure the converted file stays where it is; the
    /// source too, unless the failure is that of the last move.
    platform::Status doConvertProcessPostDstPath(const std::string& dstPath,
                                                 const std::string& srcPath) const;

  private:
    /// What is to be done to a text, as set when its conversion began, and what the conversion has
    /// found out by the time it succeeds or fails.
    struct Conversion {
        OrvEncodingInfo srcEncodingInfo;
        OrvEncodingInfo dstEncodingInfo;
        OrvLineBreak srcLineBreak = OrvLineBreak::none;
        OrvLineBreak dstLineBreak = OrvLineBreak::none; ///< `none`: not converted
        bool halfToFullKatakana = false;
        std::string failure; ///< why it failed, for the user; empty: it did not
        LostCharacters lost;
    };

    void conversionThreadProc();
    void convertQueuedFiles();
    void updateProgressWindow() const;
    void finishBatch(uint64_t wakeupsSeen) const;
    void quitAutomatically(uint64_t wakeupsSeen) const;
    void tellLostCharacters(LostCharacters lost) const;

    class ConvertedFile;

    void convertQueuedFile(const QueuedFile& file);
    /// Tells, counts and logs what became of the file.
    void finishConversion(const std::string& srcPath, Conversion conversion);
    [[nodiscard]] Conversion convertFile(const std::string& srcPath) const;
    /// Whether a step of the conversion looks at more of the text than a line.
    [[nodiscard]] bool needsWholeText(const std::string& srcPath) const;
    /// As set, for a file in this encoding.
    [[nodiscard]] Conversion beginConversion(OrvEncodingInfo srcEncodingInfo) const;
    /// Converts the text block by block, a large one on several threads. NO, to be converted whole,
    /// when it is not valid, the target encoding does not hold all of it, or it cannot be cut.
    bool convertByBlocks(Conversion& conversion, ConvertedFile& file) const;
    /// Appends the block's new bytes; NO when it cannot be converted by itself. Safe on any thread.
    bool convertBlock(platform::ByteView block, int index, Conversion& conversion,
                      platform::Bytes& bytes) const;
    /// Converts the text in one piece, altering what the target encoding does not hold.
    void convertWhole(Conversion& conversion, ConvertedFile& file) const;
    /// The next lines with new line breaks and katakana; NO at the end and when decoding fails.
    bool readConverted(TextReader& reader, Conversion& conversion, std::u16string& lines) const;
    void doConvertProcessLinebreaks(std::u16string& lines, const Conversion& conversion) const;
    void doConvertProcessHalfToFullKatakana(std::u16string& lines,
                                            const Conversion& conversion) const;
    /// Encoding, byte order and mark as set; encoding `none`: the file's own is kept.
    [[nodiscard]] OrvEncodingInfo encodingInfoOfSettings() const;
    [[nodiscard]] OrvEncodingInfo targetEncodingInfo(OrvEncodingInfo srcEncodingInfo) const;
    [[nodiscard]] OrvEncodingInfo declarationEncodingInfo(OrvEncodingInfo srcEncodingInfo) const;
    [[nodiscard]] std::string readingFailure(const platform::Error& error) const;
    [[nodiscard]] std::string reason(std::string_view key, const platform::Error& error) const;
    void logConversion(const std::string& srcPath, const Conversion& conversion) const;
    void alert(std::string_view key, const std::string& path, const std::string& why) const;

    [[nodiscard]] std::string finalPathForSrcPath(const std::string& srcPath) const;
    [[nodiscard]] uint32_t hfsCode(std::string_view actionKey, std::string_view codeKey,
                                   uint32_t sourceCode) const;

    EngineServices _services;
    TargetFiles _targets;
    // Shared with the blocks on the main queue, which hold them weakly: a block that runs after
    // releaseContents() finds them gone and does nothing.
    std::shared_ptr<FileList> _fileList;
    std::unique_ptr<BackupManager> _backupManager;
    std::shared_ptr<ProgressWindow> _progressWindow;
    std::unique_ptr<PThreadConditional> _conversionThreadIsDead;
    std::unique_ptr<PThreadConditional> _wakeupConversionThread;
    std::atomic<bool> _shouldTerminateThread = false;

    /// How often the worker has been woken, whether its progress is still to be shown, and who
    /// hears of what becomes of a batch. Blocks on the main queue hold it weakly; all but the
    /// atomic ones is for the main thread only.
    struct Batch {
        std::atomic<uint64_t> wakeups = 0;
        std::atomic<bool> isProgressScheduled = false;
        uint64_t wakeupsFinished = 0; ///< `wakeups` at the last end that was told
        std::function<void()> finishedHandler;
        std::function<void(const LostCharacters&)> lostCharactersHandler;
    };
    std::shared_ptr<Batch> _batch;
    std::atomic<uint64_t> _convertedCount = 0;
    std::atomic<uint64_t> _failedCount = 0;
};

} // namespace zelmora
