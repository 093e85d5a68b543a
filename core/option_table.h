#pragma once

#include "core/pms_mode.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace larkspur {

// Takes the values given to an option; returns why they will not do, or an empty text.
using TakeValues = std::function<QString(const QStringList& values)>;

// One option of a program's command line: parsing, the usage line and --help all read it.
struct Option {
    QString name;       // "--tcp"
    QStringList values; // the names of the values that follow it: {"HOST:PORT"}; none for a switch
    QString help;       // what it does, for --help; "\n" starts another line
    TakeValues take;
    bool lastValueOptional = false; // "--pty [LINK]": the last value may be left out
    bool repeatable = false;        // shown with "..." in the usage
};

// A program's options, in the order --help lists them; every program takes --help (or -h) too.
class OptionTable {
public:
    struct Parsed {
        QString error;        // names the option at fault; empty when all is well
        QStringList named;    // the options given, in order
        QStringList operands; // the arguments that are no option
        QStringList rest;     // what follows the operand that ended the options
        bool help = false;    // --help (or -h) was given
    };

    // `operands` names what follows the options in the usage: "SCRIPT".
    OptionTable(QString program, QList<Option> options, QString operands = QString());

    // Reads `arguments` in order. `endsOptions` may end the reading after an operand, leaving
    // the arguments after it in `rest`.
    Parsed parse(const QStringList& arguments,
                 const std::function<bool(const QString& operand)>& endsOptions = {}) const;

    // "usage: larkspur-run [--tcp HOST:PORT] [--dtr] ... SCRIPT", wrapped at 100 columns.
    QString usage() const;
    // The usage, `about`, every option with its help, then `after`.
    QString help(const QString& about, const QString& after) const;

private:
    const Option* find(const QString& name) const;

    QString m_program;
    QList<Option> m_options;
    QString m_operands;
};

// A switch that sets `flag`.
Option flagOption(const char* name, bool& flag, const char* help);
// An option with one value, named `value` in the usage.
Option valueOption(const char* name, const char* value, TakeValues take, const char* help);

// Takers for the common kinds of value. Each names what it wants when a value will not do.
TakeValues setFlag(bool& flag);
TakeValues takeText(QString& into, bool mayBeEmpty = false);
// Seconds from `low` (excluded unless `lowAllowed`) up to `high`; fractions allowed.
TakeValues takeSeconds(double& into, double low, double high, bool lowAllowed = false);
TakeValues takeWhole(int& into, int low, int high);
// One of the names `named` knows ("HOTEL"), into a T or an optional T.
template <typename Into, typename T>
TakeValues takeChoice(Into& into, std::optional<T> (*named)(const QString&),
                      const QString& wanted) {
    return [&into, named, wanted](const QStringList& values) {
        const std::optional<T> value = named(values.at(0));
        if (!value)
            return QStringLiteral("\"%1\" is not %2").arg(values.at(0), wanted);
        into = *value;
        return QString();
    };
}
TakeValues takeMode(PmsMode& into);
TakeValues takeMode(std::optional<PmsMode>& into);
TakeValues takeProtocol(Protocol& into);
TakeValues takeProtocol(std::optional<Protocol>& into);

} // namespace larkspur
