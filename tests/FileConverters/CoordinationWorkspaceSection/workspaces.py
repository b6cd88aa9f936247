"""Workspace documents for the tests of the executable."""


def key_fields(number):
    """The fields of a system's key, before and after its transmitter profile; all distinct."""
    return (
        f"<zone>Zone é</zone><series>S{number % 7}</series><band>G{number:06}</band>",
        f"<incl_group>{number % 3}</incl_group>",
    )


def uuid(number):
    return f"00000000-0000-4000-8000-{number:012x}"


def channel(number):
    head, tail = key_fields(number)
    return (
        f"<mic_channel><name>Vocal {number}</name><compat_key>{head}"
        f"<tx_profile>T</tx_profile>{tail}</compat_key>"
        f"<compat_prof_id>{uuid(number)}</compat_prof_id></mic_channel>\n"
    )


def configuration(number):
    head, tail = key_fields(number)
    flags = "".join(
        f"<{name}>{(number >> bit) & 1}</{name}>"
        for bit, name in enumerate(["imd_2t3o", "imd_2t5o", "imd_2t7o", "imd_2t9o", "imd_3t3o"])
    )
    return (
        f"<compat_config><profile>{head}<mode>T</mode>{tail}</profile>"
        f"<compat_flags>{flags}</compat_flags></compat_config>\n"
    )


def profile(number, centers=2):
    spacing = "".join(
        f"<{name}>{100 + 50 * i + number % 10}</{name}>"
        for i, name in enumerate(
            ["ch_ch", "imd_2t3o", "imd_2t5o", "imd_2t7o", "imd_2t9o", "imd_3t3o"]
        )
    )
    frequencies = "".join(f"<freq>{470000 + 25 * i}</freq>" for i in range(centers))
    name = ["robust", "median", "quantity"][number % 3]
    return (
        f'<compat_profile version="0.0.0.1" id="{uuid(number)}" name="{name}" imd_source="1"'
        f' synthesizable="{number % 2}"><spacing freq_units="KHz">{spacing}</spacing>'
        '<filter type="2"><filter_start>470000</filter_start><filter_end>534000</filter_end>'
        f'<filter_center>0</filter_center><filter_center_list count="{centers}">{frequencies}'
        "</filter_center_list></filter></compat_profile>\n"
    )


def workspace(systems, profile_id=None):
    """A sound document of so many systems: a channel, a configuration and a profile each."""
    numbers = range(systems)
    profiles = "".join(map(profile, numbers))
    if profile_id is not None:
        profiles = profiles.replace(uuid(0), profile_id)
    return (
        '<?xml version="1.0" encoding="UTF-8"?>\n<coordinated_data_root version="0.2">\n'
        f"<mic_channels>\n{''.join(map(channel, numbers))}</mic_channels>\n"
        f"<compat_configs>\n{''.join(map(configuration, numbers))}</compat_configs>\n"
        f"<compat_profiles>\n{profiles}</compat_profiles>\n"
        "<compatibility_levels><level>1</level></compatibility_levels>\n"
        "</coordinated_data_root>\n"
    )
