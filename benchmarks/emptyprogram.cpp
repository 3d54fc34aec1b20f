// What a program costs that has Qt Core, loads two plug-ins and does nothing.

#include <QCoreApplication>
#include <QPluginLoader>

#include <cstdlib>

int main(int argc, char** argv)
{
    const QCoreApplication application{argc, argv};
    for (const auto* const file : {TARN_FIRST_PLUGIN, TARN_SECOND_PLUGIN})
        if (!QPluginLoader{QString::fromUtf8(file)}.instance())
            return EXIT_FAILURE;
}
