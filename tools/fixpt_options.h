// fixpt: the options the tool knows, their help texts and the modes each
// one applies to.
#ifndef FIXPT_OPTIONS_H
#define FIXPT_OPTIONS_H

#include <QCommandLineParser>
#include <QString>

#include "fixpt_item.h"

/// Declares every option and positional argument, with the help texts.
void describeOptions(QCommandLineParser& parser);

/// Whether option (its long name) takes a value, so that the argument after
/// it is no positional one.
bool takesValue(const QString& option);

/// The first option given on the command line that does not apply to mode,
/// or an empty text.
QString optionOutsideMode(const QCommandLineParser& parser, Mode mode);

#endif  // FIXPT_OPTIONS_H
