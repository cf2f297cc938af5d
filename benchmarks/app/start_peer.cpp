// The least a program of this kind can be: an empty main window that opens an SQLite file.

#include <QApplication>
#include <QMainWindow>
#include <QTimer>

#include <unistd.h>

#include <sqlite3.h>

namespace {

class Window : public QMainWindow
{
protected:
    void paintEvent(QPaintEvent* event) override
    {
        QMainWindow::paintEvent(event);
        QTimer::singleShot(0, [] { _exit(0); });
    }
};

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    sqlite3* database = nullptr;
    if (argc < 2 || sqlite3_open(argv[1], &database) != SQLITE_OK ||
        sqlite3_exec(database, "SELECT count(*) FROM sqlite_master", nullptr, nullptr, nullptr) !=
            SQLITE_OK) {
        return 1;
    }
    Window window;
    window.show();
    const int result = QApplication::exec();
    sqlite3_close(database);
    return result;
}
