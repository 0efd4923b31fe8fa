#pragma once

// The one door to QScintilla, whose headers need words that our build keeps from Qt's own.
#include <QObject>

#define signals Q_SIGNALS
#define slots Q_SLOTS
#include <Qsci/qscilexerjavascript.h>
#include <Qsci/qscilexerjson.h>
#include <Qsci/qscilexersql.h>
#include <Qsci/qsciscintilla.h>
#undef signals
#undef slots
