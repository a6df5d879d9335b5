#pragma once

#include <QByteArray>

#include <functional>
#include <memory>

/**
 * Finds out whether a folder answers: its disk may be another machine's that is off, and whoever looks
 * there waits for ever. So it is asked in a thread of its own, which stays behind if need be.
 */
class FolderProbe
{
public:
    /** Returns when the folder has answered, whatever it says. */
    using Ask = std::function<void(const QByteArray& folder)>;

    /** @param how_to_ask the system, if there is none */
    explicit FolderProbe(QByteArray folder_path, Ask how_to_ask = nullptr);

    /**
     * Waits a moment for an answer; after one wait in vain no longer, until it comes.
     *
     * What is looked at next may still hang: the other machine may fall silent in between.
     */
    bool answers();

private:
    struct Question;

    QByteArray folder;
    Ask ask;
    std::shared_ptr<Question> open;  ///< null if none is
};
