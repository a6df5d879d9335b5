#include "doctor/judge_parts.h"

namespace
{
constexpr qint64 LITTLE_BYTES = qint64(200) * 1000 * 1000;
constexpr double LITTLE_HOURS = 24.0;

QString megabytes(qint64 bytes)
{
    return QString::number(double(bytes) / 1e6, 'f', 1) + " MB";
}

/** Whether less is left than a night of logging takes, or so little that other programs may take it. */
bool is_nearly_full(const SeenFolder& folder)
{
    return folder.bytes_free >= 0 &&
           (folder.bytes_free < LITTLE_BYTES ||
            double(folder.bytes_free) < folder.bytes_an_hour * LITTLE_HOURS);
}

Finding nearly_full(const SeenFolder& folder)
{
    const QString hours =
        folder.bytes_an_hour > 0
            ? QString(", which is about %1 hours of one station's logs")
                  .arg(double(folder.bytes_free) / folder.bytes_an_hour, 0, 'f', 0)
            : QString();
    return finding("folder-nearly-full", folder.path,
                   {folder.role, folder.path, megabytes(folder.bytes_free), hours},
                   {shell_quoted(folder.path)});
}

void judge_folder(const SeenFolder& folder, QList<Finding>& findings)
{
    const QStringList words = {folder.role, folder.path};
    const QStringList quoted = {shell_quoted(folder.path)};
    if (folder.path.isEmpty()) {
        findings << finding("no-folder-chosen", {}, {folder.role});
        return;
    }
    if (!folder.exists) {
        findings << finding("folder-missing", folder.path, words, quoted);
        return;
    }
    if (!folder.writable)
        findings << finding("folder-read-only", folder.path, words, quoted);
    if (is_nearly_full(folder))
        findings << nearly_full(folder);
    if (!folder.network.isEmpty())
        findings << finding("folder-on-network", folder.path,
                            {folder.role, folder.path, folder.network});
}

Finding judge_store(const SeenStore& store)
{
    const QString quoted = shell_quoted(store.path);
    switch (store.state) {
    case StoreState::NoFolder:
        return finding("settings-no-folder", store.path, {store.path}, {quoted});
    case StoreState::FolderReadOnly:
        return finding("settings-folder-read-only", store.path, {store.path}, {quoted});
    case StoreState::ReadOnly:
        return finding("settings-read-only", store.path, {store.path}, {quoted});
    case StoreState::Unreadable:
        return finding("store-unreadable", store.path, {store.role, store.path}, {quoted});
    case StoreState::Refused:
    case StoreState::Good:
        break;
    }
    const QString line = QString::number(store.refusal.line);
    return finding("store-refused", store.path,
                   {store.role, store.path, line, store.refusal.reason}, {line, quoted});
}
}  // namespace

void judge_stores(const QList<SeenStore>& stores, QList<Finding>& findings)
{
    for (const SeenStore& store : stores)
        if (store.state != StoreState::Good)
            findings << judge_store(store);
}

void judge_folders(const QList<SeenFolder>& folders, QList<Finding>& findings)
{
    for (const SeenFolder& folder : folders)
        judge_folder(folder, findings);
}
