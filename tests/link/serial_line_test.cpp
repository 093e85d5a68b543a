#include "link/serial_line.h"

#include <gtest/gtest.h>

using namespace larkspur;

namespace {

TEST(SerialLine, ParsesEverySettingTheDialogsOffer) {
    struct Case {
        QString text;
        qint32 baud;
        QSerialPort::Parity parity;
        int data;
        QSerialPort::StopBits stop;
    } cases[] = {
        {"9600,N,8,1", 9600, QSerialPort::NoParity, 8, QSerialPort::OneStop},
        {"1200,E,7,2", 1200, QSerialPort::EvenParity, 7, QSerialPort::TwoStop},
        {"300,m,5,1.5", 300, QSerialPort::MarkParity, 5, QSerialPort::OneAndHalfStop},
        {"19200,O,6,1", 19200, QSerialPort::OddParity, 6, QSerialPort::OneStop},
        {"110,S,4,1", 110, QSerialPort::SpaceParity, 4, QSerialPort::OneStop},
        {"1200,N,8,1,5", 1200, QSerialPort::NoParity, 8, QSerialPort::OneAndHalfStop},
    };
    for (auto& c : cases) {
        SerialLine line;
        QString error;
        ASSERT_TRUE(parseSerialLine(c.text, line, error))
            << c.text.toStdString() << error.toStdString();
        EXPECT_EQ(line.baudRate, c.baud);
        EXPECT_EQ(line.parity, c.parity);
        EXPECT_EQ(line.dataBits, c.data);
        EXPECT_EQ(line.stopBits, c.stop);
    }
}

TEST(SerialLine, NamesTheBadPart) {
    struct Case {
        QString text;
        QString mentions;
    } cases[] = {
        {"9600,N,8", "speed,parity"}, {"fast,N,8,1", "speed"},          {"9600,X,8,1", "parity"},
        {"9600,N,9,1", "data bits"},  {"9600,N,3,1", "data bits"},      {"9600,N,8,3", "stop bits"},
        {"", "speed,parity"},         {"9600,N,8,2,5", "speed,parity"},
    };
    for (auto& c : cases) {
        SerialLine line;
        QString error;
        EXPECT_FALSE(parseSerialLine(c.text, line, error)) << c.text.toStdString();
        EXPECT_TRUE(error.contains(c.mentions)) << error.toStdString();
    }
}

} // namespace
