#pragma once

#include <QObject>

/// What `scripts/threads` tries itself on. The lines that it must find end in a comment that says so.
namespace fixture {

/// A class that says it for its members.
///
/// Threads: thread-safe; at once.
class Documented {
public:
    Documented() = default;
    Documented(const Documented&) = delete;
    virtual ~Documented() = default;

    explicit Documented(int value);
    virtual void covered() = 0;

    /// Threads: bound to the thread that made it; blocks
    /// until another thread has done its part.
    virtual void ownWords() = 0;

    /// Threads: thread-safe.
    void tooFew(); // incomplete

    /// Threads: at once.
    template <class Type>
    void tooFewAsTemplate(Type value); // incomplete

    friend bool operator==(const Documented&, const Documented&) = default;
    friend bool operator<(const Documented& a, const Documented& b) { return &a < &b; } // missing

    /// Members of a class within are not members of the class around it.
    class Within {
    public:
        void silentWithin(); // missing
    };

private:
    void hidden();
};

/// Says nothing itself.
class Derived : public Documented {
public:
    explicit Derived(int value); // missing
    void covered() override;
    void ownWords() override;
    void silent(); // missing
    operator int() const; // missing
};

class Undocumented {
public:
    Undocumented(); // missing
    ~Undocumented(); // missing
    void member(); // missing
    static void staticMember(); // missing
};

/// Says nothing itself, and what it overrides does not either.
class DerivedFromUndocumented : public Undocumented {
public:
    virtual void member(); // missing
};

template <class Type>
class Template {
public:
    void member(Type value); // missing
    void defined(); // missing

private:
    void hidden();
};

template <class Type>
void Template<Type>::defined()
{
}

template <class Type>
class Template<Type*> {
public:
    void member(); // missing
};

struct Silent {
    void member(); // missing
};

extern "C" {
void plain(); // missing
}

/// Threads: called on the thread of the device, with no lock held.
class Observer {
public:
    virtual void onEvent() = 0;

    /// Threads: called on the thread of the device.
    virtual void onOtherEvent() = 0; // incomplete
};

/// What Q_OBJECT declares is not asked for.
class Object : public QObject {
    Q_OBJECT

public:
    Object(const Object&) = delete;

signals:
    void changed(); // missing
};

/// The word Threads: in the midst of a paragraph says nothing.
void free(); // missing

/// Threads: reentrant; at once.
void freeAndDocumented();

} // namespace fixture

/// Threads: reentrant; at once. A namespace speaks for nobody: other headers open it, too.
namespace fixture::values {

void notSpokenForByTheNamespace(); // missing

/// Threads: reentrant; at once.
struct Value {
    int number;
    friend bool operator==(const Value&, const Value&) = default;
    void member();
};

} // namespace fixture::values
