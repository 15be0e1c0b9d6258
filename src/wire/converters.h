// Conversions that are part of the table only.
#pragma once

namespace ofp {

void bswap_Reserved66(void *value);
void bswap_Reserved109(void *value);
void bswap_Reserved110(void *value);
void bswap_SummaryCount(void *value);
void bswap_InstFilterInstance(void *value);
void bswap_InstFilterController(void *value);
void bswap_InstFilterFlags(void *value);
void bswap_MissRule(void *value);
void bswap_ForbiddenPort(void *value);
void bswap_Reserved129(void *value);
void bswap_OapServer(void *value);
void bswap_OapServerRun(void *value);
void bswap_OapClientNum(void *value);
void bswap_ContextInfo(void *value);
void bswap_Reserved140(void *value);
void bswap_Reserved144(void *value);
void bswap_Reserved146(void *value);
void bswap_CacheInfo(void *value);
void bswap_CacheInfoRep(void *value);
void bswap_Precedence(void *value);
void bswap_FlowLogDisable(void *value);
void bswap_RefreshIpFlow(void *value);
void bswap_PermitPortType(void *value);
void bswap_TcpNsr(void *value);
void bswap_EnableALAlFunction(void *value);
void bswap_Reserved194(void *value);
void bswap_EnablePayloadFunction(void *value);
void bswap_Reserved218(void *value);

} // namespace ofp
