// Playback reads on one thread while another edits: the read that never
// waits, and reads racing adds and removes (run under ThreadSanitizer by
// `make tsan`).
#include <scoremodel/events/envelopes/ECEnvPoint.h>
#include <scoremodel/events/envelopes/ECEnvelope.h>

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace
{
ECEnvPoint *NewPoint(float at, float value)
{
    auto *p = static_cast<ECEnvPoint *>(RUNTIME_CLASS(ECEnvPoint)->CreateObject());
    MCTime t(at);
    p->SetTime(&t);
    p->SetValue(value);
    return p;
}

ECEnvelope *NewEnvelope(int points)
{
    auto *env = static_cast<ECEnvelope *>(RUNTIME_CLASS(ECEnvelope)->CreateObject());
    env->Ref();
    for (int i = 0; i < points; ++i)
        env->AddChild(NewPoint(static_cast<float>(i), static_cast<float>(i % 100)), 1);
    return env;
}
} // namespace

TEST(EnvelopeThreads, APlaybackReadReturnsWhileAnEditorHoldsTheLock)
{
    ECEnvelope *env = NewEnvelope(10);
    MCTime three(3.0f);
    float value = -1.0f;
    EXPECT_EQ(env->TryGetValue(three, value, 0, -1), 1);
    EXPECT_EQ(value, 3.0f);

    std::mutex m;
    std::condition_variable cv;
    bool held = false, release = false;
    std::thread editor([&] {
        CSingleLock lock(&env->GetLock(), TRUE);
        std::unique_lock<std::mutex> guard(m);
        held = true;
        cv.notify_all();
        cv.wait(guard, [&] { return release; });
    });
    {
        std::unique_lock<std::mutex> guard(m);
        cv.wait(guard, [&] { return held; });
    }
    MCTime five(5.0f);
    value = -1.0f;
    EXPECT_EQ(env->TryGetValue(five, value, 0, -1), -1) << "the read must not wait for the editor";
    EXPECT_EQ(value, 3.0f) << "it answers with the last delivered value";
    {
        std::lock_guard<std::mutex> guard(m);
        release = true;
    }
    cv.notify_all();
    editor.join();
    EXPECT_EQ(env->TryGetValue(five, value, 0, -1), 1);
    EXPECT_EQ(value, 5.0f);
    env->RemoveChildren(1);
    env->Unref(1);
}

TEST(EnvelopeThreads, ReadsStayRightWhileAnotherThreadAddsAndRemovesPoints)
{
    // The fixed points stand on whole beats; the editor only adds and
    // removes points on half beats, so a read on a whole beat has one right
    // answer whatever the editor is doing.
    ECEnvelope *env = NewEnvelope(200);
    std::atomic<bool> stop{false};
    std::atomic<long> reads{0};
    // The editor goes on until the reader has read a while beside it, however
    // the two threads happen to be scheduled on a busy machine.
    std::thread editor([&] {
        for (int i = 0; i < 3000 || reads.load() < 500; ++i)
        {
            ECEnvPoint *p = NewPoint(static_cast<float>(i % 200) + 0.5f, 1000.0f);
            p->Ref();
            if (env->AddChild(p, 1))
                env->RemoveChild(p, 1);
            p->Unref(1);
        }
        stop = true;
    });
    long wrong = 0;
    float at = 0.0f;
    do
    {
        const long n = reads.load();
        MCTime t(at);
        float value = 0.0f;
        const int got = (n % 2) ? env->GetValue(t, value, 0, -1) : env->TryGetValue(t, value, 0, -1);
        if (got >= 0 && value != static_cast<float>(static_cast<int>(at) % 100))
            ++wrong;
        MCTime t2(at);
        ECEnvPoint *p = (n % 3) ? nullptr : env->GetPointAt(t2);
        (void)p;
        reads.store(n + 1);
        at += 1.0f;
        if (at >= 200.0f)
            at = 0.0f;
    } while (!stop.load());
    editor.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_GE(reads.load(), 500);
    env->RemoveChildren(1);
    env->Unref(1);
}
