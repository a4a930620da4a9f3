// Figures of one run of the collision engine.
#pragma once

struct OrvexCollisionMetrics
{
  int partCount = 0;
  // Pairs to test.
  int candidatePairs = 0;
  // Pairs tested; the number of results when the time limit or a callback ended the run.
  int processedPairs = 0;
  // Results.
  int collisionCount = 0;
  // Seconds: the whole run, the index with its pairs, meshes and boxes of parts, the tests of
  // pairs.
  double totalSeconds = 0;
  double broadPhaseSeconds = 0;
  double cacheSeconds = 0;
  double narrowPhaseSeconds = 0;
  // Pairs whose exact stages raised an exception. They usually count as clear.
  int failedPairs = 0;
  // Threads that were there to be used.
  int threadCount = 1;
  // No meaning; they keep their values.
  bool flagA = false;
  int valueA = 1;
  int valueB = 0;
  int valueC = 0;
  // The configuration's.
  double reportedDeflection = 0;
  bool flagB = false; // no meaning
  // The time limit ended the run.
  bool timedOut = false;
};
