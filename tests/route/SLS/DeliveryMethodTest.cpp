#include "route/SLS/DeliveryMethod.h"

#include "support/Recorder.h"
#include "support/Show.h"

namespace {

class DeliveryMethodTest : public CRecorder {};

TEST_F(DeliveryMethodTest, ServicesAndBasePatterns)
{
    const std::string text =
        "<d "
        "xmlns:x='u'><BroadcastAppService><BasePattern>b1</BasePattern><basePattern/><x:basePattern>b2</x:basePattern>"
        "</BroadcastAppService><unicastAppService><basePattern>u1</basePattern></unicastAppService><UnicastAppService/>"
        "<broadcastAppService><Other>no</Other></broadcastAppService></d>";
    CDeliveryMethod method;
    EXPECT_EQ(method.State(), nullptr);
    ASSERT_TRUE(method.Create());
    ASSERT_TRUE(method.XMLBase::Parse(text.data(), static_cast<unsigned>(text.size()), false));
    const CDeliveryMethod::SDeliveryMethod& state = *method.State();
    ASSERT_EQ(Join(state.broadcastAppSvcs.Size(), state.unicastAppSvcs.Size()), "2|2");
    EXPECT_EQ(state.broadcastAppSvcs.Get(0)->State()->basePatterns, (std::list<std::string>{"b1", "b2"}));
    EXPECT_TRUE(state.broadcastAppSvcs.Last()->State()->basePatterns.empty());
    EXPECT_EQ(state.unicastAppSvcs.Get(0)->State()->basePatterns, std::list<std::string>{"u1"});
    EXPECT_EQ(Logged("[CBroadcastAppSvc::sm_CbBasePattern] basePattern value is not exist !!!"), 1);
    EXPECT_EQ(Logged("[CDeliveryMethod::m_ProcessParseDeliveryMethod] unicastAppService"), 1);
    EXPECT_EQ(Logged("[CUnicastAppSvc::m_ProcessParseUnicastAppSvc] basePattern"), 1);
    method.Destroy();
    EXPECT_EQ(Logged("[CUnicastAppSvc::Destroy]"), 2);
}

}  // namespace
