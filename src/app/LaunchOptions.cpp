#include "app/LaunchOptions.h"

#include "ui/AppStrings.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>

namespace {

void describe(QCommandLineParser *parser)
{
    parser->setApplicationDescription(Str::launchDescription());
    parser->addOption({{QStringLiteral("h"), QStringLiteral("help")}, Str::packOptionHelp()});
    parser->addOption({{QStringLiteral("v"), QStringLiteral("version")}, Str::packOptionVersion()});
    parser->addPositionalArgument(QStringLiteral("PICTURE…"), Str::launchPositional(),
                                  QStringLiteral("[PICTURE_OR_FOLDER…]"));
}

} // namespace

LaunchOptions LaunchOptions::parse(const QStringList &arguments)
{
    QCommandLineParser parser;
    describe(&parser);
    parser.parse(arguments); // unknown options are Qt's or a mistake: neither stops the start
    LaunchOptions options;
    if (parser.isSet(QStringLiteral("help")))
        options.action = Action::Help;
    else if (parser.isSet(QStringLiteral("version")))
        options.action = Action::Version;
    for (const QString &argument : parser.positionalArguments())
        options.pictures << QFileInfo(argument).absoluteFilePath();
    return options;
}

QString LaunchOptions::helpText()
{
    QCommandLineParser parser;
    describe(&parser);
    return parser.helpText().replace(QStringLiteral("[options]"), QStringLiteral("[OPTIONS]"));
}

QString LaunchOptions::versionText()
{
    return QCoreApplication::applicationName() + QLatin1Char(' ') + QCoreApplication::applicationVersion() +
           QLatin1Char('\n');
}
