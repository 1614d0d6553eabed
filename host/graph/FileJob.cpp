#include "host/graph/FileJob.h"

#include "host/base/HostError.h"
#include "host/base/TargetFile.h"
#include "host/media/Clips.h"
#include "host/media/PictureFrames.h"

namespace vixahost::graph {

namespace {

void RequireGoingOn(const FileJob& job)
{
    if (job.stopped())
        throw StoppedJob();
}

double RunGraph(const FileJob& job, media::FrameReader& reader, media::FrameWriter& writer, std::int64_t frames)
{
    // A picture's bands depend on each other, and several of the largest frames would need too much memory.
    const media::FrameFormat format = reader.Format();
    const auto pace = reader.FramesAPicture() == 1 && frames != 1 && format.FrameBytes() <= media::bandBytes
                          ? EffectGraph::Pace::Overlapping
                          : EffectGraph::Pace::InTurn;
    EffectGraph graph(job.effectLibrary, job.stack, reader, writer, format.TimeOf(frames), pace);
    if (job.prepare)
        job.prepare(graph);
    graph.Run(
        [&](std::int64_t done) {
            if (job.progress)
                job.progress(done / reader.FramesAPicture(), frames);
        },
        job.stopped);
    return graph.MedianMilliseconds();
}

} // namespace

JobDone SaveThroughEffects(const FileJob& job, media::Picture& picture, media::PictureFormat format)
{
    TargetFile target(job.target);
    media::BandedPicture bands(picture, effects::ReachOf(job.stack));
    const double milliseconds = RunGraph(job, bands, bands, 1);
    if (!bands.Whole())
        throw FailedJob("The filter graph gave no picture.");
    RequireGoingOn(job);
    media::WritePicture(target.Temporary(), format, picture, target.Name());
    RequireGoingOn(job);
    target.Commit();
    return {{picture.width, picture.height}, 1, milliseconds};
}

JobDone SaveThroughEffects(const FileJob& job, media::FrameReader& reader, media::FrameWriter& writer)
{
    JobDone done = {reader.Format(), 0, 0, reader.Yuv()};
    FileJob counting = job;
    counting.progress = [&](std::int64_t frames, std::int64_t ofThem) {
        done.frames = frames;
        if (job.progress && ofThem > 0)
            job.progress(frames, ofThem);
    };
    done.milliseconds = RunGraph(counting, reader, writer, reader.FrameCount());
    RequireGoingOn(job);
    writer.Finish();
    RequireGoingOn(job);
    return done;
}

JobDone SaveThroughEffects(const FileJob& job, const std::filesystem::path& clip, const media::ClipChoice& choice)
{
    const auto reader = media::OpenClip(clip, choice);
    const auto target = media::CreateClip(job.target, *reader, choice.colours);
    JobDone done = SaveThroughEffects(job, *reader, *target->writer);
    target->Commit();
    done.losesSound = target->losesSound;
    return done;
}

} // namespace vixahost::graph
