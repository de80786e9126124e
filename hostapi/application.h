// The host application and its documents.
#pragma once

class HostEdInput;
class OdDbDatabase;

/// An open drawing. Belongs to the host; nobody counts it.
class HostDocument {
  public:
    virtual OdDbDatabase* database() = 0;  // slot 0; no reference added
    virtual void reserved1() {}
    virtual void reserved2() {}
    virtual HostEdInput* input() = 0;  // slot 3; no reference added

  protected:
    ~HostDocument() = default;
};

/// What host function 2 gives.
class HostApplication {
  public:
    virtual HostDocument* activeDocument() = 0;  // slot 0; null when no drawing is open
    virtual void reserved1() {}
    virtual void reserved2() {}
    virtual void reserved3() {}
    virtual void reserved4() {}
    virtual void reserved5() {}
    virtual void reserved6() {}
    virtual void reserved7() {}
    virtual void reserved8() {}
    virtual void reserved9() {}
    virtual void reserved10() {}
    virtual void reserved11() {}
    virtual void reserved12() {}
    virtual void reserved13() {}
    virtual void reserved14() {}
    virtual void reserved15() {}
    /// Slot 16. The channel for messages when no document is open; prompts on it are cancelled at once.
    virtual HostEdInput* applicationInput() = 0;

  protected:
    ~HostApplication() = default;
};
