# Lets GenICam programs that are started from this shell find the producer, for Bash and Zsh:
#   source /opt/velmora/share/velmora/environment.sh
velmora_genicam=$(cd -- "$(dirname -- "${BASH_SOURCE[0]:-$0}")/../../lib64/genicam" && pwd) &&
  export GENICAM_GENTL64_PATH=$velmora_genicam${GENICAM_GENTL64_PATH:+:$GENICAM_GENTL64_PATH}
unset velmora_genicam
