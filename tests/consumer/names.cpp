// Classes of a program that happen to be named like some of the library's, visible to it. None is ever used.
#include <cstdlib>

#define OWN(name)                                           \
    class __attribute__((visibility("default"))) name {     \
      public:                                               \
        name() { std::abort(); }                            \
        virtual ~name() { std::abort(); }                   \
        virtual bool Create();                              \
        virtual bool Parse(const char* text, int one_more); \
        virtual void Destroy();                             \
        int number = 0;                                     \
    };                                                      \
    bool name::Create()                                     \
    {                                                       \
        std::abort();                                       \
    }                                                       \
    bool name::Parse(const char*, int)                      \
    {                                                       \
        std::abort();                                       \
    }                                                       \
    void name::Destroy()                                    \
    {                                                       \
        std::abort();                                       \
    }                                                       \
    void Use(name*& object)                                 \
    {                                                       \
        delete object, object = new name;                   \
    }

OWN(CGenre)
OWN(CName)
OWN(CText)
OWN(CDescription)
OWN(CAudioLanguage)
