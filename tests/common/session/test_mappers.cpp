#include "common/session/mirror/objectmapper.h"
#include "common/session/mirror/objectmodelmapper.h"
#include "tests/support/testmain.h"

#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>

namespace vantrel::test {

namespace {

class Mapped : public QObject
{
    Q_OBJECT

public:
    Q_INVOKABLE Mapped() {}
};

/// A target whose value is whole, so that what it is given comes back rounded.
class Dial : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int value READ value WRITE setValue NOTIFY valueChanged)
    Q_PROPERTY(int mute READ value)

public:
    int value() const { return m_value; }
    void setValue(int value)
    {
        m_value = value;
        Q_EMIT valueChanged();
    }

Q_SIGNALS:
    void valueChanged();

private:
    int m_value = 0;
};

} // namespace

class TestMappers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsAnObjectForEachRow_data()
    {
        QTest::addColumn<bool>("typed");
        QTest::newRow("instances") << true;
        QTest::newRow("no object type") << false;
    }
    void keepsAnObjectForEachRow()
    {
        QFETCH(bool, typed);
        QStandardItemModel model;
        auto* root = new QStandardItem(QStringLiteral("root"));
        model.appendRow(root);
        model.appendRow(new QStandardItem(QStringLiteral("elsewhere")));
        root->appendRow(new QStandardItem(QStringLiteral("a")));
        ObjectMapper mapper;
        if (typed)
            mapper.setObjectType(&Mapped::staticMetaObject);
        QStringList log;
        connect(&mapper, &ObjectMapper::objectAdded, this, [&](QObject* object, const QModelIndex& index) {
            QCOMPARE(object != nullptr, typed);
            log << QStringLiteral("+") + index.data().toString();
        });
        connect(&mapper, &ObjectMapper::objectRemoved, this, [&](QObject* object, const QModelIndex& index) {
            QCOMPARE(object != nullptr, typed);
            log << QStringLiteral("-") + index.data().toString();
        });
        mapper.setModel(root->index());
        root->insertRow(0, new QStandardItem(QStringLiteral("b")));
        // Siblings share the internal pointer in this model.
        expectWarning(QStringLiteral("Not equal, but internal pointer is correct"));
        model.item(1)->appendRow(new QStandardItem(QStringLiteral("not below the root")));
        root->removeRow(1);
        QCOMPARE(log, QStringList({QStringLiteral("+a"), QStringLiteral("+b"), QStringLiteral("-a")}));
        QCOMPARE(mapper.mapped().size(), 1);
        const QPointer<QObject> kept = mapper.mapped()[0].object;
        mapper.setRoot(mapper.root());
        QCOMPARE(log.mid(3), QStringList({QStringLiteral("-b"), QStringLiteral("+b")}));
        QVERIFY(!kept);
    }

    void endsWithItsRoot()
    {
        QStandardItemModel model;
        auto* above = new QStandardItem(QStringLiteral("above"));
        auto* root = new QStandardItem(QStringLiteral("root"));
        model.appendRow(above);
        above->appendRow(root);
        root->appendRow(new QStandardItem(QStringLiteral("a")));
        ObjectMapper mapper;
        mapper.setModel(root->index());
        QSignalSpy added(&mapper, &ObjectMapper::objectAdded);
        model.removeRow(0);
        QVERIFY(!mapper.root().isValid());
        model.appendRow(new QStandardItem(QStringLiteral("none of its rows")));
        QCOMPARE(added.count(), 0);
    }

    void warnsOfWhatCannotBeMapped()
    {
        ObjectMapper mapper;
        QSignalSpy added(&mapper, &ObjectMapper::objectAdded);
        expectWarning(QStringLiteral("Root is not valid"));
        mapper.setModel(QModelIndex());
        QCOMPARE(added.count(), 0);
        QStandardItemModel model(1, 1);
        model.item(0);
        model.setItem(0, new QStandardItem);
        model.item(0)->appendRow(new QStandardItem);
        mapper.setObjectType(&Dial::staticMetaObject);
        expectWarning(QStringLiteral("is the constructor Q_INVOKABLE?"));
        mapper.setModel(model.index(0, 0));
        QCOMPARE(added.count(), 1);
    }

    void bindsPropertiesToColumns()
    {
        QStandardItemModel model(2, 3);
        for (int row = 0; row < 2; ++row)
            for (int column = 0; column < 3; ++column)
                model.setItem(row, column, new QStandardItem(QString::number(10 * row + column)));
        Dial dial;
        ObjectModelMapper mapper(&model);
        mapper.addMapping(&dial, QStringLiteral("value"), 1);
        QSignalSpy moved(&mapper, &ObjectModelMapper::currentIndexChanged);
        mapper.toFirst();
        QCOMPARE(dial.value(), 1);
        mapper.toNext();
        QCOMPARE(dial.value(), 11);
        mapper.toNext();
        QCOMPARE(mapper.currentIndex(), 1);
        QCOMPARE(moved.count(), 2);
        dial.setValue(42);
        QCOMPARE(model.item(1, 1)->text(), QStringLiteral("42"));
        model.item(1, 2)->setText(QStringLiteral("7"));
        QCOMPARE(dial.value(), 42);
        // What the model brings is not written back, so the text keeps what the target had to round.
        model.item(1, 1)->setText(QStringLiteral("007"));
        QCOMPARE(dial.value(), 7);
        QCOMPARE(model.item(1, 1)->text(), QStringLiteral("007"));
        mapper.toPrevious();
        QCOMPARE(dial.value(), 1);
        expectWarning(QStringLiteral("not found in object"));
        mapper.addMapping(&dial, QStringLiteral("nothing"), 0);
        expectWarning(QStringLiteral("does not have a NOTIFY signal."));
        mapper.addMapping(&dial, QStringLiteral("mute"), 0);
    }
};

HALCYRA_TEST(TestMappers)

} // namespace vantrel::test

#include "test_mappers.moc"
