#include "common/file.h"
#include "support/ordinary_user.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QtTest>

namespace
{
/** Makes a directory the current one while it lives. */
class CurrentDirectory
{
public:
    explicit CurrentDirectory(const QString& path) : former(QDir::currentPath())
    {
        QDir::setCurrent(path);
    }
    ~CurrentDirectory()
    {
        QDir::setCurrent(former);
    }

private:
    QString former;
};
}  // namespace

class FileTest : public QObject
{
    Q_OBJECT

private slots:
    void names_are_safe_or_not_data();
    void names_are_safe_or_not();
    void every_character_code_is_judged();
    void change_extension_replaces_what_follows_the_last_dot_data();
    void change_extension_replaces_what_follows_the_last_dot();
    void change_extension_refuses_data();
    void change_extension_refuses();
    void make_path_creates_all_that_is_missing();
    void make_path_is_content_with_what_exists();
    void make_path_fails_below_a_file();
    void directory_of_is_absolute_data();
    void directory_of_is_absolute();
    void copy_file_creates_the_target_directory();
    void copy_file_needs_leave_to_overwrite();
    void copy_file_never_copies_onto_itself_data();
    void copy_file_never_copies_onto_itself();
    void copy_file_needs_a_source();
    void copy_file_fails_if_the_directory_cannot_be_made();
    void copy_file_fails_if_the_target_cannot_be_removed();
    void copy_file_fails_if_the_target_cannot_be_written();
};

void FileTest::names_are_safe_or_not_data()
{
    QTest::addColumn<QString>("name");
    add_columns<bool>({"unsafe_characters", "safe_filename"});

    QTest::newRow("plain") << "Pack 17" << false << true;
    QTest::newRow("empty") << "" << false << false;
    QTest::newRow("leading blank") << " a" << false << false;
    QTest::newRow("trailing blank") << "a " << false << false;
    QTest::newRow("leading dot") << ".a" << false << false;
    QTest::newRow("trailing dot") << "a." << false << false;
    QTest::newRow("only a blank") << " " << false << false;
    QTest::newRow("only a dot") << "." << false << false;
    QTest::newRow("blank and dot inside") << "a b.c" << false << true;
    QTest::newRow("one character") << "a" << false << true;
    QTest::newRow("tab") << "a\tb" << true << false;
    QTest::newRow("unit separator") << QString("a") + QChar(0x1F) << true << false;
    QTest::newRow("NUL") << QString("a") + QChar(0) + "b" << true << false;
    QTest::newRow("delete") << QString("a") + QChar(0x7F) << false << true;
    QTest::newRow("accented Latin-1") << QString::fromUtf8("Säule Ñ ÿ") << false << true;
    QTest::newRow("U+0100") << QString("a") + QChar(0x100) << true << false;
    QTest::newRow("beyond 16 bits") << QString::fromUtf8("a😀") << true << false;
    QTest::newRow("path") << "a/b" << true << false;
    QTest::newRow("unsafe at the end") << "ab?" << true << false;
}

void FileTest::names_are_safe_or_not()
{
    QFETCH(QString, name);
    QFETCH(bool, unsafe_characters);
    QFETCH(bool, safe_filename);
    QCOMPARE(File::contains_unsafe_filename_characters(name), unsafe_characters);
    QCOMPARE(File::is_safe_filename(name), safe_filename);
}

void FileTest::every_character_code_is_judged()
{
    const QString illegal = "<>:\"/\\|?*";
    for (int code = 0; code <= 0xFFFF; ++code) {
        const bool expected = code < 0x20 || code > 0xFF || illegal.contains(QChar(code));
        const QString name = QString("x") + QChar(code) + "x";
        if (File::contains_unsafe_filename_characters(name) != expected)
            QFAIL(qPrintable(QString("code %1").arg(code, 0, 16)));
    }
}

void FileTest::change_extension_replaces_what_follows_the_last_dot_data()
{
    add_columns<QString>({"filename", "extension", "changed"});

    add_row("plain", "a.csv", ".txt", "a.txt");
    add_row("last of several dots", "a.b.csv", ".txt", "a.b.txt");
    add_row("dot at the end", "a.", ".txt", "a.txt");
    add_row("hidden file", ".csv", ".txt", ".txt");
    add_row("dot in a directory", "/a.b/c", ".txt", "/a.txt");
    add_row("bare dot", "a.csv", ".", "a.");
}

void FileTest::change_extension_replaces_what_follows_the_last_dot()
{
    QFETCH(QString, filename);
    QFETCH(QString, extension);
    QFETCH(QString, changed);
    QString result = "old";
    QVERIFY(File::change_extension(filename, extension, result));
    QCOMPARE(result, changed);
}

void FileTest::change_extension_refuses_data()
{
    add_columns<QString>({"filename", "extension"});

    add_row("no dot in the extension", "a.csv", "txt");
    add_row("dot inside the extension", "a.csv", "t.xt");
    add_row("empty extension", "a.csv", "");
    add_row("no dot in the name", "a", ".txt");
    add_row("empty name", "", ".txt");
}

void FileTest::change_extension_refuses()
{
    QFETCH(QString, filename);
    QFETCH(QString, extension);
    QString result = "old";
    QVERIFY(!File::change_extension(filename, extension, result));
    QCOMPARE(result, QString("old"));
}

void FileTest::make_path_creates_all_that_is_missing()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("a/b/c");
    QVERIFY(File::make_path(path));
    QVERIFY(QFileInfo(path).isDir());
}

void FileTest::make_path_is_content_with_what_exists()
{
    QTemporaryDir dir;
    QVERIFY(File::make_path(dir.path()));
    QVERIFY(File::make_path("/"));
}

void FileTest::make_path_fails_below_a_file()
{
    QTemporaryDir dir;
    QVERIFY(write_file(dir.filePath("file"), ""));
    QVERIFY(!File::make_path(dir.filePath("file/below")));
    QVERIFY(!File::make_path(dir.filePath("file")));
}

void FileTest::directory_of_is_absolute_data()
{
    add_columns<QString>({"path", "directory"});

    add_row("absolute", "/a/b/c.txt", "/a/b");
    add_row("in the root", "/c.txt", "/");
    QTest::newRow("relative") << "c.txt" << QDir::currentPath();
    add_row("detour", "/a/../b/c.txt", "/b");
}

void FileTest::directory_of_is_absolute()
{
    QFETCH(QString, path);
    QFETCH(QString, directory);
    QCOMPARE(File::directory_of(path), directory);
}

void FileTest::copy_file_creates_the_target_directory()
{
    QTemporaryDir dir;
    QVERIFY(write_file(dir.filePath("source"), "content"));
    QVERIFY(File::copy_file(dir.filePath("source"), dir.filePath("new/deep/target"), false));
    QCOMPARE(content_of(dir.filePath("new/deep/target")), QByteArray("content"));
    QCOMPARE(content_of(dir.filePath("source")), QByteArray("content"));
}

void FileTest::copy_file_needs_leave_to_overwrite()
{
    QTemporaryDir dir;
    QVERIFY(write_file(dir.filePath("source"), "new"));
    QVERIFY(write_file(dir.filePath("target"), "old"));
    QVERIFY(!File::copy_file(dir.filePath("source"), dir.filePath("target"), false));
    QCOMPARE(content_of(dir.filePath("target")), QByteArray("old"));
    QVERIFY(File::copy_file(dir.filePath("source"), dir.filePath("target"), true));
    QCOMPARE(content_of(dir.filePath("target")), QByteArray("new"));
}

void FileTest::copy_file_never_copies_onto_itself_data()
{
    add_columns<QString>({"source", "target"});

    // "%1" stands for the directory of the file, which is also the current one.
    add_row("same spelling", "%1/file", "%1/file");
    add_row("relative and absolute", "file", "%1/file");
    add_row("absolute and relative", "%1/file", "file");
    add_row("here", "file", "./file");
    add_row("detour", "%1/file", "%1/sub/../file");
    QTest::newRow("doubled separator") << "%1/file"
                                       << "%1//file";
    add_row("linked directory", "%1/file", "%1/link/file");
    add_row("linked file", "%1/linked_file", "%1/file");
}

void FileTest::copy_file_never_copies_onto_itself()
{
    QFETCH(QString, source);
    QFETCH(QString, target);
    QTemporaryDir dir;
    const CurrentDirectory current(dir.path());
    QVERIFY(write_file(dir.filePath("file"), "content"));
    QVERIFY(QDir(dir.path()).mkdir("sub"));
    QVERIFY(QFile::link(dir.path(), dir.filePath("link")));
    QVERIFY(QFile::link(dir.filePath("file"), dir.filePath("linked_file")));
    source.replace("%1", dir.path());
    target.replace("%1", dir.path());
    QVERIFY(!File::copy_file(source, target, false));
    QVERIFY(!File::copy_file(source, target, true));
    QCOMPARE(content_of(dir.filePath("file")), QByteArray("content"));
}

void FileTest::copy_file_needs_a_source()
{
    QTemporaryDir dir;
    QVERIFY(write_file(dir.filePath("target"), "old"));
    QVERIFY(!File::copy_file(dir.filePath("source"), dir.filePath("target"), true));
    QCOMPARE(content_of(dir.filePath("target")), QByteArray("old"));
}

void FileTest::copy_file_fails_if_the_directory_cannot_be_made()
{
    QTemporaryDir dir;
    QVERIFY(write_file(dir.filePath("source"), "content"));
    QVERIFY(write_file(dir.filePath("file"), ""));
    QVERIFY(!File::copy_file(dir.filePath("source"), dir.filePath("file/below/target"), true));
}

void FileTest::copy_file_fails_if_the_target_cannot_be_removed()
{
    QTemporaryDir dir;
    QVERIFY(write_file(dir.filePath("source"), "content"));
    QVERIFY(QDir(dir.path()).mkpath("target/full"));
    QVERIFY(!File::copy_file(dir.filePath("source"), dir.filePath("target"), true));
    QVERIFY(QFileInfo(dir.filePath("target/full")).isDir());
}

void FileTest::copy_file_fails_if_the_target_cannot_be_written()
{
    const OrdinaryUser user;
    QVERIFY(user.active());
    QTemporaryDir dir;
    QVERIFY(write_file(dir.filePath("source"), "content"));
    QVERIFY(QDir(dir.path()).mkdir("closed"));
    QVERIFY(QFile::setPermissions(dir.filePath("closed"), QFile::ReadOwner | QFile::ExeOwner));
    QVERIFY(!File::copy_file(dir.filePath("source"), dir.filePath("closed/target"), true));
    QVERIFY(QFile::setPermissions(dir.filePath("closed"),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QVERIFY(!QFile::exists(dir.filePath("closed/target")));
}

KEST_GUILESS_TEST(FileTest)
#include "tst_file.moc"
