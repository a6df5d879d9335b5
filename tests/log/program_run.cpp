#include "program_run.h"

#include "support/test_files.h"

#include <QDir>
#include <QJsonDocument>
#include <QProcess>

QString kest_log()
{
    return KEST_LOG;
}

Run::Run(const QString& program, const QStringList& arguments, const QString& folder)
{
    constexpr int PATIENCE_MS = 300000;
    QProcess process;
    process.setWorkingDirectory(folder);
    process.start(program, arguments);
    if (process.waitForFinished(PATIENCE_MS) && process.exitStatus() == QProcess::NormalExit)
        status = process.exitCode();
    output = QString::fromUtf8(process.readAllStandardOutput());
    complaints = QString::fromUtf8(process.readAllStandardError());
}

QJsonObject Run::json() const
{
    return QJsonDocument::fromJson(output.toUtf8()).object();
}

QString Place::path(const QString& name) const
{
    return folder.filePath(name);
}

void Place::write(const QString& name, const QByteArray& bytes) const
{
    if (!write_file(path(name), bytes))
        qFatal("%s cannot be written.", qPrintable(name));
}

QStringList Place::names() const
{
    return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}

Run Place::run(const QStringList& arguments) const
{
    return Run(kest_log(), arguments, folder.path());
}
