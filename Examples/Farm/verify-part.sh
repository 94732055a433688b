#!/bin/sh
# One job of an array that verifies a folder on many computers. Docs/farm.md shows how to start it.
#
#   sbatch --array=1-8 verify-part.sh FOLDER RESULTS
#
# Writes RESULTS/part-K.json, K being the number of the job. A job that is killed leaves no result, so it may be
# requeued. RESULTS is a folder that all computers can access.
set -u
folder=$1
results=$2
number=${SLURM_ARRAY_TASK_ID:?"start this script as an array of jobs"}
first=${SLURM_ARRAY_TASK_MIN:-1}
count=${SLURM_ARRAY_TASK_COUNT:?"start this script as an array of jobs"}
if [ "$first" -ne 1 ] || [ "$number" -gt "$count" ]; then
  echo "verify-part.sh: number the jobs from 1 without gaps: --array=1-N" >&2
  exit 2
fi

mkdir -p "$results" || exit 1
result=$results/part-$number.json
unfinished=$result.$$.unfinished
trap 'rm -f "$unfinished"' EXIT
rm -f "$result" # of an earlier run
"${ORL:-orl}" verify "$folder" --part "$number/$count" --json >"$unfinished"
code=$?
# A changed file is a finding, which the merging job reports. Everything else is a failure of this job: a stop, a disk
# that is gone, a list that cannot be read, or a result that could not be written to its last line.
case $code in
  0 | 1 | 4 | 7 | 10 | 11)
    if tail -n 1 "$unfinished" | grep -q '"summary": true.*"part": {.*}$'; then
      mv "$unfinished" "$result"
      exit
    fi
    ;;
esac
[ "$code" -ne 0 ] || code=1
exit "$code"
