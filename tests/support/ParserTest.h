#pragma once

#include "support/Recorder.h"

/// Gives a document to a parser in a heap block of exactly its size.
template <class TParser>
bool ParseXml(TParser& parser, const std::string& text)
{
    std::vector<unsigned char> block = Exact(text);
    block.reserve(1);
    return parser.Parse(reinterpret_cast<const char*>(block.data()), static_cast<unsigned int>(block.size()));
}

/// An object that is created, with these arguments, and destroyed at its end.
template <class T, auto... TArguments>
struct SCreated : T {
    SCreated() { EXPECT_TRUE(this->Create(TArguments...)); }
    ~SCreated() { this->Destroy(); }
    SCreated(const SCreated&) = delete;
    SCreated& operator=(const SCreated&) = delete;
};

/// Fixture of one parser, which is created, with these arguments, before the test and destroyed after it.
template <class TParser, auto... TArguments>
class TParserTest : public CRecorder {
  protected:
    void SetUp() override
    {
        CRecorder::SetUp();
        ASSERT_TRUE(m_parser.Create(TArguments...));
    }

    void TearDown() override
    {
        m_parser.Destroy();
        CRecorder::TearDown();
    }

    void Renew()
    {
        m_parser.Destroy();
        ASSERT_TRUE(m_parser.Create(TArguments...));
    }

    bool Parse(const std::string& text) { return ParseXml(m_parser, text); }

    TParser m_parser;
};
