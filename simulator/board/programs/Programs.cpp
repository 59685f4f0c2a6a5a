// The table of programs and their generated dispatch functions.
#include "simulator/board/programs/Programs.h"

#include "simulator/protocol/Records.h"

// rpcgen defines the dispatch functions but declares them nowhere.
extern "C" {
void sim_portmap_2(svc_req*, SVCXPRT*);
void sim_setup_1(svc_req*, SVCXPRT*);
void sim_i2c_1(svc_req*, SVCXPRT*);
void sim_mdio_1(svc_req*, SVCXPRT*);
void sim_jtag_1(svc_req*, SVCXPRT*);
void sim_gpio_1(svc_req*, SVCXPRT*);
void sim_keepalive_1(svc_req*, SVCXPRT*);
void sim_adc_1(svc_req*, SVCXPRT*);
void sim_thermal_1(svc_req*, SVCXPRT*);
}

namespace OrvaneSim {

const std::vector<Program>& portMapperPrograms() {
    static const std::vector<Program> programs{{"portmap", SIM_PORTMAP, SIM_PORTMAP_VERSION, sim_portmap_2}};
    return programs;
}

const std::vector<Program>& servicePrograms() {
    static const std::vector<Program> programs{
        {"setup", SIM_SETUP, SIM_SETUP_VERSION, sim_setup_1},
        {"i2c", SIM_I2C, SIM_I2C_VERSION, sim_i2c_1},
        {"mdio", SIM_MDIO, SIM_MDIO_VERSION, sim_mdio_1},
        {"jtag", SIM_JTAG, SIM_JTAG_VERSION, sim_jtag_1},
        {"gpio", SIM_GPIO, SIM_GPIO_VERSION, sim_gpio_1},
        {"keepAlive", SIM_KEEPALIVE, SIM_KEEPALIVE_VERSION, sim_keepalive_1},
        {"adc", SIM_ADC, SIM_ADC_VERSION, sim_adc_1},
        {"thermal", SIM_THERMAL, SIM_THERMAL_VERSION, sim_thermal_1},
    };
    return programs;
}

} // namespace OrvaneSim
