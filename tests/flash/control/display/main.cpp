#include <QApplication>
#include <gtest/gtest.h>

// For tests that look at a screen.
int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
