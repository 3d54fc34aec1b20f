#include <console/console.h>

#include <QCoreApplication>

int main(int argc, char** argv)
{
    tarn::console::prepare();
    int own = 1; // the arguments are ours: Qt is to see none of them
    const QCoreApplication application{own, argv};
    return tarn::console::run(argc, argv);
}
